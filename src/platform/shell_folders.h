#pragma once

#include <array>
#include <cstdint>

#include "platform/processes.h"
#include "runtime/text.h"

namespace zev {

/// A shell identifier list, owned by the caller until it hands it to CoTaskMemFree; null is none.
using ItemIdList = void*;

/// A class or folder identifier, 16 bytes as the system lays them out.
using Guid = std::array<std::uint8_t, 16>;

inline constexpr std::int32_t CSIDL_PROGRAMS = 2;
inline constexpr std::int32_t CSIDL_PERSONAL = 5;

/// Folders that the shell knows, by number on every system and by identifier on newer ones. A path
/// that the code page of the system cannot write comes in its short form, if it has one.
class ShellFolders {
 public:
  virtual ~ShellFolders() = default;

  /// 0 and a list on success.
  virtual std::int32_t SHGetSpecialFolderLocation(WindowHandle window, std::int32_t csidl,
                                                  ItemIdList& list) = 0;
  /// The path into a buffer of 260 bytes, ended by a NUL. False on failure.
  virtual bool SHGetPathFromIDList(ItemIdList list, Text& buffer) = 0;
  /// 0 on success.
  virtual std::int32_t CLSIDFromString(TextView text, Guid& identifier) = 0;
  /// 0 and a NUL-terminated path on success, which the caller hands to CoTaskMemFree. Looked up at
  /// the call: older systems do not have it.
  virtual std::int32_t SHGetKnownFolderPath(const Guid& folder, std::uint32_t flags,
                                            std::uintptr_t token, char16_t*& path) = 0;
  /// Length of a NUL-terminated text in 16-bit units.
  virtual std::int32_t lstrlenW(const char16_t* text) = 0;
  virtual void CoTaskMemFree(void* memory) = 0;
};

}  // namespace zev
