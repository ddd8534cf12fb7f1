#include "posix/descriptor.h"

#include <unistd.h>

#include <cerrno>

namespace zev::posix {

Descriptor::~Descriptor() { close(); }

int Descriptor::close() {
  if (number_ < 0) return 0;
  const int result = ::close(std::exchange(number_, -1));
  return result == 0 ? 0 : errno;
}

}  // namespace zev::posix
