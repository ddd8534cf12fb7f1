#pragma once

#include "runtime/file_lists.h"
#include "runtime/form.h"

namespace zev {

/// The folder browser as it is drawn. What it does is the business of the destination.
class Form3 final : public Form {
 public:
  Form3();

  CommandButton& Command3 = control<CommandButton>(u"Command3");  ///< cancel
  CommandButton& Command2 = control<CommandButton>(u"Command2");  ///< accept
  CommandButton& Command1 = control<CommandButton>(u"Command1");  ///< new folder
  DriveListBox& Drive1 = control<DriveListBox>(u"Drive1");
  DirListBox& Dir1 = control<DirListBox>(u"Dir1");
  Label& Label3 = control<Label>(u"Label3");  ///< free-space figure
  Label& Label2 = control<Label>(u"Label2");  ///< heading of the figure
  Label& Label1 = control<Label>(u"Label1");  ///< heading of the dialog
};

}  // namespace zev
