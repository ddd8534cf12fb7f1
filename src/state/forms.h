#pragma once

#include "runtime/controls.h"
#include "runtime/form.h"
#include "state/socket_array.h"

namespace zev {

/// The wizard's form as it is drawn: its controls by their names. What they do is the business of
/// the wizard.
class Form1 final : public Form {
 public:
  Form1();

  Frame& Frame2 = control<Frame>(u"Frame2");
  PictureBox& Picture1 = control<PictureBox>(u"Picture1");
  Image& Image1 = control<Image>(u"Image1");

  Label& Label1 = control<Label>(u"Label1");
  Label& Label2 = control<Label>(u"Label2");
  ComboBox& Combo1 = control<ComboBox>(u"Combo1");
  Label& Label4 = control<Label>(u"Label4");
  Label& Label5 = control<Label>(u"Label5");

  Label& Label3 = control<Label>(u"Label3");
  TextBox& Text1 = control<TextBox>(u"Text1");
  OptionButton& Option1 = control<OptionButton>(u"Option1");
  OptionButton& Option2 = control<OptionButton>(u"Option2");

  Label& Label9 = control<Label>(u"Label9");
  TextBox& Text2 = control<TextBox>(u"Text2");
  CommandButton& Command4 = control<CommandButton>(u"Command4");

  Label& Label11 = control<Label>(u"Label11");
  Label& Label12 = control<Label>(u"Label12");
  PictureBox& Picture2 = control<PictureBox>(u"Picture2");
  Label& Label7 = control<Label>(u"Label7");
  Label& Label8 = control<Label>(u"Label8");
  CheckBox& Check1 = control<CheckBox>(u"Check1");

  CommandButton& Command6 = control<CommandButton>(u"Command6");
  CommandButton& Command3 = control<CommandButton>(u"Command3");
  CommandButton& Command1 = control<CommandButton>(u"Command1");
  CommandButton& Command2 = control<CommandButton>(u"Command2");

  SocketArray WS;

  /// The frames of the pages, a control array indexed from 1 to 4.
  Frame& Frame1(int index) const;
};

/// Hard-wraps a text of paragraphs as the agreement stands on the form at design time: lines of at
/// most `width` characters, broken at blanks.
Text hardWrapped(TextView text, std::size_t width);

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
