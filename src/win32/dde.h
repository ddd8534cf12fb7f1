#pragma once

#include "platform/shell.h"

namespace zev::win32 {

/// A client of the DDE management library. It joins the library with its first conversation.
class Win32Dde final : public Dde {
 public:
  Win32Dde() = default;
  ~Win32Dde() override;
  Win32Dde(const Win32Dde&) = delete;
  Win32Dde& operator=(const Win32Dde&) = delete;

  void LinkTopic(TextView topic) override;
  void LinkItem(TextView item) override;
  void LinkMode(std::int32_t mode) override;
  void LinkTimeout(std::int32_t tenths) override;
  void LinkExecute(TextView command) override;

 private:
  void join();
  void connect();
  void disconnect();

  Text topic_;
  std::int32_t timeout_ = 50;  ///< tenths of a second, as a control has it from the start
  unsigned long instance_ = 0;
  void* conversation_ = nullptr;
};

}  // namespace zev::win32
