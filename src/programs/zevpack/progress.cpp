#include "programs/zevpack/progress.h"

#include <unistd.h>

#include <cstdio>

namespace zev::packing {

Progress::Progress(std::string_view work, std::size_t total)
    : work_(work), total_(total), shown_(isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
  if (shown_) std::fprintf(stderr, "\r\x1B[K");
}

void Progress::step(std::string_view piece) {
  const std::lock_guard alone(telling_);
  ++done_;
  if (!shown_) return;
  std::fprintf(stderr, "\r\x1B[K%s %zu of %zu: %.*s", work_.c_str(), done_, total_,
               static_cast<int>(piece.size()), piece.data());
}

}  // namespace zev::packing
