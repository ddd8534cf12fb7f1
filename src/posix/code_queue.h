#pragma once

#include <string_view>

#include "platform/message_queue.h"

namespace zev::posix {

/// Whether this process can enter window procedures as they are on 32-bit Windows.
#if defined(__i386__)
inline constexpr bool entersCode = true;
#else
inline constexpr bool entersCode = false;
#endif

/// The address of a function of the system that machine code may call (stdcall): of user32
/// SetWindowLongA and CallWindowProcA, which are for the windows of the queue that was entered
/// last. 0 for all others, and where no machine code is entered.
std::uintptr_t codeOf(std::string_view library, std::string_view function);

#if defined(__i386__)

/// A queue that enters procedures where they are.
class CodeQueue final : public MessageQueue {
 public:
  CodeQueue() = default;
  CodeQueue(const CodeQueue&) = delete;
  CodeQueue& operator=(const CodeQueue&) = delete;
  ~CodeQueue() override;

  std::intptr_t CallWindowProcA(std::uintptr_t procedure, const WindowMessage& message) override;
  bool entersMachineCode() const override { return true; }

 protected:
  std::intptr_t enterCode(std::uintptr_t procedure, const WindowMessage& message) override;
};

using WindowQueue = CodeQueue;

#else

using WindowQueue = MessageQueue;

#endif

}  // namespace zev::posix
