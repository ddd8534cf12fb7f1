#pragma once

#include <cstdint>
#include <exception>

#include "platform/platform.h"
#include "runtime/text.h"
#include "socket/event_socket_module.h"
#include "state/forms.h"
#include "state/globals.h"

namespace zev {

/// What the pieces of a run tell it on their way.
class RunReport {
 public:
  virtual ~RunReport() = default;
  /// The diagnostic step that begins, printed by the trap of the run.
  virtual void setRunStep(std::int32_t step) = 0;
  /// The status line, shown at once.
  virtual void showStatus(TextView text) = 0;
};

/// Procedures of the wizard's form that modules below it call back.
class Form1Procedures {
 public:
  virtual ~Form1Procedures() = default;
  virtual void Command1_Click() = 0;   ///< as if the person had pressed Back
  virtual void Command4_Click() = 0;   ///< opens the folder browser
  virtual void DizinGuncelle() = 0;    ///< normalises the install directory
  virtual void RemoveTempFiles() = 0;  ///< empties the working folder of the install
};

/// What all modules of one running program share: the machine, the globals and the forms.
struct Program {
  Platform& platform;
  Globals globals{};
  /// An exception that leaves an event procedure of a socket is thrown again from the top of the
  /// message loop.
  modEventSocket sockets{
      {platform.sockets, platform.messageWindows, platform.kernel, platform.dialogs},
      [this](const std::exception_ptr& error) {
        platform.application.post([error] { std::rethrow_exception(error); });
      }};
  /// What the run relies on while the message loop may pass: its folder, and the member in work.
  Hold temporaryFolder{};
  Hold workFile{};
  Form1 form1{};
  Form2 form2{};
  Form3 form3{};

  /// One pass of the message loop: pending events run.
  void DoEvents() const { platform.application.DoEvents(); }
};

}  // namespace zev
