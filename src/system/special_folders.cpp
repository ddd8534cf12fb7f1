#include "system/special_folders.h"

#include <array>

namespace zev {
namespace {

constexpr std::size_t pathSize = 260;
constexpr std::uint32_t nameSize = 256;
constexpr std::size_t systemDirectorySize = 256;

/// Identifiers of the known folders, by kind from 1.
constexpr std::array<TextView, 2> knownFolders = {
    u"{FDD39AD0-238F-46AF-ADB4-6C85480369C7}",  // documents
    u"{F1B32785-6FBA-4FCF-9D55-7B8E7F157091}",  // local application data
};

}  // namespace

Text GetSpecialFolder(Program& program, std::int32_t csidl) {
  ShellFolders& shell = program.platform.shellFolders;
  const WindowHandle window = program.platform.application.engine().windowHandle(program.form1);
  ItemIdList list = nullptr;
  if (shell.SHGetSpecialFolderLocation(window, csidl, list) != 0) return {};
  Text buffer = blanks(pathSize);
  const bool found = shell.SHGetPathFromIDList(list, buffer);
  shell.CoTaskMemFree(list);
  return found ? Text(beforeNul(buffer)) : Text();
}

Text WideToString(ShellFolders& shell, const char16_t* pointer) {
  if (pointer == nullptr) return {};
  return Text(pointer, static_cast<std::size_t>(shell.lstrlenW(pointer)));
}

Text GetKnownFolder(Program& program, std::uint8_t kind) {
  if (program.globals.gOSClass != profileClass) return GetSpecialFolder(program, CSIDL_PERSONAL);
  if (kind < 1 || kind > knownFolders.size()) return {};
  ShellFolders& shell = program.platform.shellFolders;
  Guid folder{};
  if (shell.CLSIDFromString(knownFolders[kind - 1u], folder) != 0) return {};
  char16_t* path = nullptr;
  if (shell.SHGetKnownFolderPath(folder, 0, 0, path) != 0) return {};
  Text text = WideToString(shell, path);
  shell.CoTaskMemFree(path);
  return text;
}

Text systemDirectoryBuffer(Program& program, std::size_t size) {
  Text buffer = blanks(size);
  program.platform.system.GetSystemDirectoryA(buffer, static_cast<std::uint32_t>(size));
  return buffer;
}

Text systemDrive(Program& program) {
  return Text(left(systemDirectoryBuffer(program, systemDirectorySize), 2));
}

std::optional<Text> userName(Program& program) {
  Text buffer = blanks(nameSize);
  std::uint32_t size = nameSize;
  if (!program.platform.system.GetUserNameA(buffer, size)) return {};
  return Text(withoutTrailing(trim(buffer), u'\0'));
}

}  // namespace zev
