#include "win32/writable_path.h"

#include "win32/ansi.h"
#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

bool isWritable(const Text& path) { return fromAnsi(toAnsi(path)) == path; }

/// Empty if there is no such entry.
Text shortPath(const Text& path) {
  Text answer(longestPath, u'\0');
  const DWORD length =
      ::GetShortPathNameW(wide(path), reinterpret_cast<wchar_t*>(answer.data()), longestPath);
  answer.resize(length < longestPath ? length : 0);
  return answer;
}

}  // namespace

Text writablePath(const Text& path) {
  if (isWritable(path)) return path;
  const Text brief = shortPath(path);
  return !brief.empty() && isWritable(brief) ? brief : path;
}

}  // namespace zev::win32
