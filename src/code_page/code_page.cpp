#include "code_page/code_page.h"

#include <stdexcept>

#include "code_page/page_tables.h"

namespace zev {
namespace {

[[noreturn]] void refuse(std::uint32_t codePage) {
  throw std::invalid_argument("unknown code page " + std::to_string(codePage));
}

}  // namespace

std::string toCodePage(TextView text, std::uint32_t codePage) {
  if (codePage == utf8CodePage) return toUtf8(text);
  if (const UpperHalf* table = singleByteTable(codePage)) return toSingleByte(text, *table);
  if (const DoubleBytePage* page = doubleBytePage(codePage)) return toDoubleByte(text, *page);
  refuse(codePage);
}

Text fromCodePage(std::string_view bytes, std::uint32_t codePage) {
  if (codePage == utf8CodePage) return fromUtf8(bytes);
  if (const UpperHalf* table = singleByteTable(codePage)) return fromSingleByte(bytes, *table);
  if (const DoubleBytePage* page = doubleBytePage(codePage)) return fromDoubleByte(bytes, *page);
  refuse(codePage);
}

Text throughCodePage(TextView text, std::uint32_t codePage) {
  return fromCodePage(toCodePage(text, codePage), codePage);
}

}  // namespace zev
