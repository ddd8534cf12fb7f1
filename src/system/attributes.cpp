#include "system/attributes.h"

#include "runtime/error.h"

namespace zev {
namespace {

std::int32_t clearAttribute(Files& files, TextView path, std::int32_t bit) {
  const Text trimmed(trim(path));
  if (trimmed.empty()) return 0;
  bool there = false;
  ignoringErrors([&] { there = exists(files, trimmed, dir_mask::withVolume); });
  if (!there) return 0;
  std::int32_t attributes = 0;
  ignoringErrors([&] { attributes = files.GetAttr(trimmed); });
  if ((attributes & bit) != 0) {
    ignoringErrors([&] { files.SetFileAttributesA(trimmed, attributes & ~bit); });
  }
  ignoringErrors([&] { attributes = files.GetAttr(trimmed); });
  return (attributes & bit) != 0 ? -1 : 0;
}

}  // namespace

bool exists(Files& files, TextView path, std::int32_t mask) {
  return !files.Dir(trim(path), mask).empty();
}

bool folderExists(Files& files, TextView path) {
  return !trim(path).empty() && exists(files, path, dir_mask::directories);
}

std::int32_t ClearHiddenAttribute(Files& files, TextView path) {
  return clearAttribute(files, path, static_cast<std::int32_t>(file_attribute::hidden));
}

std::int32_t ClearReadOnlyAttribute(Files& files, TextView path) {
  return clearAttribute(files, path, static_cast<std::int32_t>(file_attribute::readOnly));
}

}  // namespace zev
