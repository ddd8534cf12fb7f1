#pragma once

#include <map>
#include <memory>
#include <vector>

#include "platform/shell.h"
#include "simulated/machine_state.h"

namespace zev::simulated {

/// Folders of the shell. What it hands out is memory of its own, alive until it is freed or the
/// program is gone.
class SimulatedShellFolders final : public ShellFolders {
 public:
  /// Borrows the machine.
  explicit SimulatedShellFolders(MachineState& machine) : machine_(machine) {}

  std::int32_t SHGetSpecialFolderLocation(WindowHandle window, std::int32_t csidl,
                                          ItemIdList& list) override;
  bool SHGetPathFromIDList(ItemIdList list, Text& buffer) override;
  std::int32_t CLSIDFromString(TextView text, Guid& identifier) override;
  std::int32_t SHGetKnownFolderPath(const Guid& folder, std::uint32_t flags, std::uintptr_t token,
                                    char16_t*& path) override;
  std::int32_t lstrlenW(const char16_t* text) override;
  /// Memory that is not the shell's is left alone.
  void CoTaskMemFree(void* memory) override;

  /// What was handed out and not freed.
  std::size_t unfreed() const { return lists_.size() + texts_.size(); }

 private:
  std::optional<Text> specialFolder(std::int32_t csidl) const;

  MachineState& machine_;
  std::map<void*, std::unique_ptr<Text>>
      lists_;  ///< a list is the address of the path it stands for
  std::map<void*, std::unique_ptr<char16_t[]>> texts_;
};

}  // namespace zev::simulated
