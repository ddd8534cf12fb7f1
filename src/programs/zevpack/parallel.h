#pragma once

#include <cstddef>
#include <functional>

namespace zev::packing {

/// Calls `task` for each number below `count`, on as many processors as the process may use, and
/// returns when all calls have ended. Calls begin in the order of their numbers. If any throw, the
/// exception of the lowest number is thrown again; what had not begun by then is left out. Where
/// the system grants no threads, the calling one does it all.
void inParallel(std::size_t count, const std::function<void(std::size_t)>& task);

}  // namespace zev::packing
