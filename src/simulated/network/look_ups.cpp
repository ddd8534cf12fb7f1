#include "simulated/network/look_ups.h"

#include <utility>

#include "simulated/network/host_record.h"

namespace zev::simulated {
namespace {}  // namespace

std::int32_t LookUps::begin(Request request) {
  const std::int32_t handle = ++lastHandle_;
  running_[handle] = std::move(request);
  network_.after(network_.settings.lookUpTime, [weak = weak_from_this(), handle] {
    if (const auto self = weak.lock()) self->end(handle);
  });
  return handle;
}

/// The name is looked up at the end, so that names can change while a look-up runs.
void LookUps::end(std::int32_t handle) {
  const auto running = running_.extract(handle);
  if (running.empty()) return;
  const Request& request = running.mapped();
  const Found found = network_.find(request.name);
  const std::size_t size = found.error == 0 ? hostRecordSize(found) : 0;
  const std::int32_t error = size > request.length ? winsock::error::noBuffers : found.error;
  if (error == 0) writeHostRecord(found, request.buffer);
  queue_.post({request.window, request.message, static_cast<std::uintptr_t>(handle),
               winsock::reply(error, static_cast<std::uint32_t>(size))});
}

}  // namespace zev::simulated
