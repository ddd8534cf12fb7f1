#pragma once

#include <optional>

#include "platform/shortcuts.h"
#include "win32/automation.h"

namespace zev::win32 {

/// Shortcuts by the automation object of Windows. Its objects are gone before this is.
class Win32Shortcuts final : public Shortcuts {
 public:
  std::unique_ptr<WScriptShell> CreateObject() override;

 private:
  std::optional<AutomationThread> thread_;
};

}  // namespace zev::win32
