#include "code_page/code_page.h"
#include "code_page/double_byte.h"
#include "code_page/single_byte.h"

namespace zev {

bool isKnownCodePage(std::uint32_t codePage) {
  return codePage == utf8CodePage || singleByteTable(codePage) != nullptr ||
         doubleBytePage(codePage) != nullptr;
}

}  // namespace zev
