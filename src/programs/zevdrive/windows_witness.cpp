#include "programs/zevdrive/windows_witness.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>

// Behind the header that has the system's.
#include <wincrypt.h>

#include "win32/control_windows.h"

namespace zev::drive {
namespace {

using win32::wide;

struct HandleCloser {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using OwnHandle = std::unique_ptr<void, HandleCloser>;

/// Opens with all sharing, so that the program under test is kept from nothing. Null for a file
/// that is not there or refuses to be read.
OwnHandle openFile(const Text& path) {
  const HANDLE file =
      CreateFileW(wide(path), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                  nullptr, OPEN_EXISTING, 0, nullptr);
  const bool inUse = file == INVALID_HANDLE_VALUE && GetLastError() == ERROR_SHARING_VIOLATION;
  if (inUse) throw scenario::InUse("in use: " + toUtf8(path));
  return OwnHandle(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

/// An open key; null if it is not there.
class Key {
 public:
  Key(RegistryKey hive, const Text& path) {
    if (RegOpenKeyExW(hiveHandle(hive), wide(path), 0, MAXIMUM_ALLOWED, &key_) != ERROR_SUCCESS) {
      key_ = nullptr;
    }
  }
  ~Key() {
    if (key_ != nullptr) RegCloseKey(key_);
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;

  HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

bool isText(DWORD type) { return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ; }

/// A text's bytes as the calls of an A interface hand them out.
std::vector<std::uint8_t> inCodePage(const std::vector<std::uint8_t>& wideBytes) {
  const auto* units = reinterpret_cast<const wchar_t*>(wideBytes.data());
  const int count = static_cast<int>(wideBytes.size() / sizeof(wchar_t));
  if (count == 0) return {};
  const int length = WideCharToMultiByte(CP_ACP, 0, units, count, nullptr, 0, nullptr, nullptr);
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(length));
  WideCharToMultiByte(CP_ACP, 0, units, count, reinterpret_cast<char*>(bytes.data()), length,
                      nullptr, nullptr);
  return bytes;
}

/// A text counts up to its first NUL; its bytes are all that is stored.
scenario::Witness::Value told(DWORD type, const std::vector<std::uint8_t>& bytes) {
  if (!isText(type)) return {type, std::nullopt, bytes};
  const auto* units = reinterpret_cast<const wchar_t*>(bytes.data());
  const Text text(units, units + bytes.size() / sizeof(wchar_t));
  return {type, Text(beforeNul(text)), inCodePage(bytes)};
}

/// The size is asked for first; a value that has grown by then counts as none.
std::optional<scenario::Witness::Value> valueOf(HKEY key, const Text& name) {
  DWORD type = 0;
  DWORD size = 0;
  if (RegQueryValueExW(key, wide(name), nullptr, &type, nullptr, &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  std::vector<std::uint8_t> bytes(size);
  if (RegQueryValueExW(key, wide(name), nullptr, &type, bytes.data(), &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  bytes.resize(size);
  return told(type, bytes);
}

constexpr std::size_t digestSize = 32;

std::optional<std::array<std::uint8_t, digestSize>> digestOf(
    HCRYPTPROV provider, const std::vector<std::uint8_t>& bytes) {
  HCRYPTHASH hash = 0;
  if (!CryptCreateHash(provider, CALG_SHA_256, 0, 0, &hash)) return std::nullopt;
  std::array<std::uint8_t, digestSize> digest{};
  DWORD size = digestSize;
  const bool done = CryptHashData(hash, bytes.data(), static_cast<DWORD>(bytes.size()), 0) &&
                    CryptGetHashParam(hash, HP_HASHVAL, digest.data(), &size, 0);
  CryptDestroyHash(hash);
  return done ? std::optional(digest) : std::nullopt;
}

}  // namespace

/// The system's numbers of hives carry a sign where handles have 64 bits.
HKEY hiveHandle(RegistryKey hive) {
  return reinterpret_cast<HKEY>(static_cast<LONG_PTR>(static_cast<LONG>(hive)));
}

std::optional<scenario::Witness::Entry> WindowsWitness::entry(const Text& path) const {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (!GetFileAttributesExW(wide(path), GetFileExInfoStandard, &data)) return std::nullopt;
  return Entry{data.dwFileAttributes,
               static_cast<std::uint64_t>(data.nFileSizeHigh) << 32 | data.nFileSizeLow};
}

std::optional<std::vector<std::uint8_t>> WindowsWitness::read(const Text& path,
                                                              std::uint64_t offset,
                                                              std::uint64_t count) const {
  const OwnHandle file = openFile(path);
  if (!file) return std::nullopt;
  LARGE_INTEGER place{};
  place.QuadPart = static_cast<LONGLONG>(offset);
  SetFilePointerEx(file.get(), place, nullptr, FILE_BEGIN);
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(count));
  DWORD got = 0;
  if (!ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &got, nullptr)) {
    return std::nullopt;
  }
  bytes.resize(got);
  return bytes;
}

std::optional<std::string> WindowsWitness::sha256(const Text& path) const {
  const auto file = entry(path);
  const auto bytes = file ? read(path, 0, file->size) : std::nullopt;
  HCRYPTPROV provider = 0;
  if (!bytes ||
      !CryptAcquireContextW(&provider, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT)) {
    return std::nullopt;
  }
  const auto digest = digestOf(provider, *bytes);
  CryptReleaseContext(provider, 0);
  if (!digest) return std::nullopt;
  constexpr std::string_view digits = "0123456789abcdef";
  std::string hex;
  for (const std::uint8_t each : *digest) {
    hex += digits[each >> 4];
    hex += digits[each & 15];
  }
  return hex;
}

/// "." and ".." are none of the entries. A folder that refuses to be listed looks empty.
std::optional<std::vector<Text>> WindowsWitness::names(const Text& folder) const {
  const auto found = entry(folder);
  if (!found || (found->attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return std::nullopt;
  std::vector<Text> all;
  WIN32_FIND_DATAW data{};
  const Text pattern = join(withoutTrailing(folder, u'\\'), u"\\*");
  const HANDLE search = FindFirstFileW(wide(pattern), &data);
  if (search == INVALID_HANDLE_VALUE) return all;
  do {
    const std::wstring name = data.cFileName;
    if (name != L"." && name != L"..") all.emplace_back(name.begin(), name.end());
  } while (FindNextFileW(search, &data));
  FindClose(search);
  return all;
}

std::optional<scenario::Witness::Value> WindowsWitness::value(RegistryKey hive, const Text& key,
                                                              const Text& name) const {
  const Key open(hive, key);
  return open.get() == nullptr ? std::nullopt : valueOf(open.get(), name);
}

/// No name is longer than 16,383 characters. A value that goes away meanwhile is left out.
std::optional<std::map<Text, scenario::Witness::Value>> WindowsWitness::values(
    RegistryKey hive, const Text& key) const {
  const Key open(hive, key);
  if (open.get() == nullptr) return std::nullopt;
  constexpr DWORD longestName = 16384;
  std::map<Text, Value> all;
  std::vector<wchar_t> name(longestName);
  for (DWORD place = 0;; ++place) {
    DWORD length = longestName;
    if (RegEnumValueW(open.get(), place, name.data(), &length, nullptr, nullptr, nullptr,
                      nullptr) != ERROR_SUCCESS) {
      return all;
    }
    const Text text(name.data(), name.data() + length);
    if (auto value = valueOf(open.get(), text)) all[text] = std::move(*value);
  }
}

}  // namespace zev::drive
