#include "platform/message_queue.h"

#include <utility>

namespace zev {
namespace {

constexpr std::uint32_t WM_DESTROY = 2;
constexpr std::uint32_t WM_NCDESTROY = 130;
constexpr WindowHandle handleStep = 2;

}  // namespace

WindowHandle MessageQueue::CreateWindowExA(TextView, TextView) {
  lastHandle_ += handleStep;
  windows_[lastHandle_] = {};
  return lastHandle_;
}

bool MessageQueue::DestroyWindow(WindowHandle window) {
  if (windows_.count(window) == 0) return false;
  send({window, WM_DESTROY, 0, 0});
  send({window, WM_NCDESTROY, 0, 0});
  windows_.erase(window);
  std::erase_if(queue_, [&](const WindowMessage& each) { return each.window == window; });
  return true;
}

std::uintptr_t MessageQueue::GetWindowLongA(WindowHandle window, std::int32_t index) {
  const auto found = windows_.find(window);
  return found == windows_.end() || index != windowProcedureIndex ? 0 : found->second.procedure;
}

std::uintptr_t MessageQueue::SetWindowLongA(WindowHandle window, std::int32_t index,
                                            std::uintptr_t procedure) {
  const auto found = windows_.find(window);
  if (found == windows_.end() || index != windowProcedureIndex) return 0;
  return std::exchange(found->second.procedure, procedure == 0 ? defaultProcedure : procedure);
}

std::intptr_t MessageQueue::CallWindowProcA(std::uintptr_t procedure,
                                            const WindowMessage& message) {
  if (procedure == defaultProcedure) return 0;
  const auto routine = routines_.find(procedure);
  return routine == routines_.end() ? enterCode(procedure, message)
                                    : routine->second->enter(message);
}

std::intptr_t MessageQueue::enterCode(std::uintptr_t, const WindowMessage&) { return 0; }

void MessageQueue::standIn(std::uintptr_t address, MessageRoutine* routine) {
  if (routine == nullptr) {
    routines_.erase(address);
  } else {
    routines_[address] = routine;
  }
}

void MessageQueue::dropBeforeDispatch(WindowHandle window,
                                      std::function<bool(const WindowMessage&)> drops) {
  const auto found = windows_.find(window);
  if (found != windows_.end()) found->second.drops = std::move(drops);
}

bool MessageQueue::post(const WindowMessage& message) {
  if (windows_.count(message.window) == 0) return false;
  queue_.push_back(message);
  return true;
}

std::intptr_t MessageQueue::send(const WindowMessage& message) {
  const auto found = windows_.find(message.window);
  return found == windows_.end() ? 0 : CallWindowProcA(found->second.procedure, message);
}

bool MessageQueue::dispatch() {
  if (queue_.empty()) return false;
  const WindowMessage message = queue_.front();
  queue_.pop_front();
  const auto found = windows_.find(message.window);
  if (found != windows_.end() && !(found->second.drops && found->second.drops(message))) {
    send(message);
  }
  return true;
}

}  // namespace zev
