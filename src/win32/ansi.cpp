#include "win32/ansi.h"

#include <algorithm>

#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

int convert(TextView text, DWORD flags, std::string& bytes) {
  return WideCharToMultiByte(CP_ACP, flags, reinterpret_cast<const wchar_t*>(text.data()),
                             static_cast<int>(text.size()), bytes.data(),
                             static_cast<int>(bytes.size()), nullptr, nullptr);
}

/// A full-width backslash that turned into a real one would make another path of a name. Old
/// systems and the page UTF-8 know no such flag.
DWORD conversionFlags() {
  std::string none;
  const bool known = convert(u"x", WC_NO_BEST_FIT_CHARS, none) > 0;
  return known ? WC_NO_BEST_FIT_CHARS : 0;
}

}  // namespace

std::string toAnsi(TextView text) {
  std::string bytes;
  if (text.empty()) return bytes;
  const DWORD flags = conversionFlags();
  bytes.resize(static_cast<std::size_t>(std::max(convert(text, flags, bytes), 0)));
  convert(text, flags, bytes);
  return bytes;
}

Text fromAnsi(std::string_view bytes) {
  Text text;
  if (bytes.empty()) return text;
  const int size = static_cast<int>(bytes.size());
  const int units = MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, nullptr, 0);
  text.resize(static_cast<std::size_t>(std::max(units, 0)));
  MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, reinterpret_cast<wchar_t*>(text.data()),
                      units);
  return text;
}

std::string ansiArgument(TextView text) { return toAnsi(beforeNul(text)); }

std::uint32_t writeAnswer(Text& buffer, std::string_view answer) {
  const std::size_t room = std::min(answer.size() + 1, buffer.size());
  std::string kept(answer);
  kept.push_back('\0');
  kept.resize(room);
  buffer.replace(0, room, fromAnsi(kept));
  return static_cast<std::uint32_t>(fromAnsi(answer).size());
}

// ---- paths that the page cannot write

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
