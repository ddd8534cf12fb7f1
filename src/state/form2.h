#pragma once

#include "runtime/form.h"

namespace zev {

/// The options dialog as it is drawn. What it does is the business of the wizard.
class Form2 final : public Form {
 public:
  Form2();

  CommandButton& Command1 = control<CommandButton>(u"Command1");
  Frame& Frame3 = control<Frame>(u"Frame3");
  CheckBox& Check1 = control<CheckBox>(u"Check1");  ///< the redistributable
  CheckBox& Check2 = control<CheckBox>(u"Check2");  ///< shortcuts in the Start Menu
  CheckBox& Check3 = control<CheckBox>(u"Check3");  ///< the shortcut on the Desktop
};

}  // namespace zev
