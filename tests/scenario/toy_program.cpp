#include "scenario/toy_program.h"

namespace zev::scenario {
namespace {

constexpr ControlDesign form1Controls[] = {
    {.name = u"Frame1",
     .index = 1,
     .kind = ControlKind::Frame,
     .place = {0, 0, 4500, 1920},
     .tabIndex = 9},
    {.name = u"Label1",
     .kind = ControlKind::Label,
     .container = u"Frame1(1)",
     .place = {150, 0, 4200, 480},
     .tabIndex = 10,
     .text = u"Welcome to the toy. It has two pages, and that is all."},
    {.name = u"Text1",
     .kind = ControlKind::TextBox,
     .container = u"Frame1(1)",
     .place = {150, 720, 2250, 240},
     .tabIndex = 11,
     .text = u"first"},
    {.name = u"Combo1",
     .kind = ControlKind::ComboBox,
     .container = u"Frame1(1)",
     .place = {150, 1200, 1500, 240},
     .tabIndex = 12},
    {.name = u"Text2",
     .kind = ControlKind::TextBox,
     .container = u"Frame1(1)",
     .place = {2550, 720, 1800, 240},
     .tabIndex = 13,
     .text = u"locked",
     .locked = true},
    {.name = u"Frame1",
     .index = 2,
     .kind = ControlKind::Frame,
     .place = {0, 0, 4500, 1920},
     .tabIndex = 14,
     .visible = false},
    {.name = u"Option1",
     .kind = ControlKind::OptionButton,
     .container = u"Frame1(2)",
     .place = {150, 0, 1500, 240},
     .tabIndex = 15,
     .text = u"Yes"},
    {.name = u"Option2",
     .kind = ControlKind::OptionButton,
     .container = u"Frame1(2)",
     .place = {150, 240, 1500, 240},
     .tabIndex = 16,
     .text = u"No"},
    {.name = u"Check1",
     .kind = ControlKind::CheckBox,
     .container = u"Frame1(2)",
     .place = {150, 480, 1500, 240},
     .tabIndex = 17,
     .text = u"Launch"},
    {.name = u"Label12",
     .kind = ControlKind::Label,
     .container = u"Frame1(2)",
     .place = {150, 960, 4200, 240},
     .tabIndex = 18,
     .centred = true},
    {.name = u"Picture2",
     .kind = ControlKind::PictureBox,
     .container = u"Frame1(2)",
     .place = {150, 1440, 3000, 240},
     .tabIndex = 19},
    {.name = u"Label7",
     .kind = ControlKind::Label,
     .container = u"Picture2",
     .place = {0, 0, 0, 240},
     .tabIndex = 20,
     .bar = true},
    {.name = u"Label8",
     .kind = ControlKind::Label,
     .container = u"Picture2",
     .place = {0, 0, 3000, 240},
     .tabIndex = 21,
     .text = u"0%",
     .centred = true},
    {.name = u"Command1",
     .kind = ControlKind::CommandButton,
     .place = {150, 2160, 1050, 240},
     .tabIndex = 0,
     .text = u"<< &Back",
     .enabled = false},
    {.name = u"Command2",
     .kind = ControlKind::CommandButton,
     .place = {1350, 2160, 1050, 240},
     .tabIndex = 1,
     .text = u"&Next >>"},
    {.name = u"Command3",
     .kind = ControlKind::CommandButton,
     .place = {2550, 2160, 1050, 240},
     .tabIndex = 2,
     .text = u"Cancel"},
    {.name = u"Command4",
     .kind = ControlKind::CommandButton,
     .place = {3750, 2160, 750, 240},
     .tabIndex = 3,
     .text = u"More"},
    {.name = u"Command5",
     .kind = ControlKind::CommandButton,
     .place = {150, 2400, 1050, 240},
     .tabIndex = 4,
     .text = u"Name"},
    {.name = u"Command6",
     .kind = ControlKind::CommandButton,
     .place = {1350, 2400, 1050, 240},
     .tabIndex = 5,
     .text = u"Stop"},
    {.name = u"Command7",
     .kind = ControlKind::CommandButton,
     .place = {2550, 2400, 1050, 240},
     .tabIndex = 6,
     .text = u"Fail"},
};

constexpr FormDesign form1Design{
    .name = u"Form1", .caption = u"Toy", .width = 4650, .height = 2640, .controls = form1Controls};

constexpr ControlDesign form2Controls[] = {
    {.name = u"Command1",
     .kind = ControlKind::CommandButton,
     .place = {150, 720, 750, 240},
     .tabIndex = 0,
     .text = u"OK"},
    {.name = u"Drive1",
     .kind = ControlKind::DriveListBox,
     .place = {150, 0, 1500, 240},
     .tabIndex = 1},
    {.name = u"Dir1",
     .kind = ControlKind::DirListBox,
     .place = {150, 240, 1500, 240},
     .tabIndex = 2},
};

constexpr FormDesign form2Design{
    .name = u"Form2", .caption = u"More", .width = 1800, .height = 960, .controls = form2Controls};

class ToyProgram final : public simulator::PlayedProgram {
 public:
  explicit ToyProgram(Platform& platform) : platform_(platform) {
    wireForm1();
    wireForm2();
  }

  void start() override { platform_.application.Show(form1_); }
  std::vector<Form*> forms() override { return {&form1_, &form2_}; }

  std::optional<PropertyValue> global(std::string_view name) override {
    if (name == "gName") return PropertyValue(gName_);
    if (name == "gPage") return PropertyValue(gPage_);
    return std::nullopt;
  }

  bool setGlobal(std::string_view name, const PropertyValue& value) override {
    if (name == "gName") return take(value, gName_);
    if (name == "gPage") return take(value, gPage_);
    return false;
  }

  void choose(Control& list, const Text& entry) override {
    gName_ = join(list.name(), u"=", entry);
  }

 private:
  template <typename T>
  static bool take(const PropertyValue& value, T& global) {
    const T* typed = std::get_if<T>(&value);
    if (typed != nullptr) global = *typed;
    return typed != nullptr;
  }

  template <typename T>
  T& one(TextView name) {
    return form1_.control<T>(name);
  }

  void wireForm1() {
    form1_.Load = [this] {
      for (const TextView each : {u"English", u"Deutsch", u"Français"}) {
        one<ComboBox>(u"Combo1").AddItem(Text(each));
      }
    };
    form1_.Unload = [this](std::int16_t& Cancel) { ask(Cancel); };
    one<TextBox>(u"Text1").LostFocus = [this] { gName_ = one<TextBox>(u"Text1").Text_.get(); };
    one<ComboBox>(u"Combo1").Click = [this] { form1_.Caption = one<ComboBox>(u"Combo1").text(); };
    one<CommandButton>(u"Command2").Click = [this] { goOn(); };
    one<CommandButton>(u"Command3").Click = [this] { platform_.application.Unload(form1_); };
    one<CommandButton>(u"Command4").Click = [this] { openForm2(); };
    one<CommandButton>(u"Command5").Click = [this] {
      gName_ = platform_.dialogs.InputBox(u"Your name:", u"Name", u"nobody");
    };
    one<CommandButton>(u"Command6").Click = [] { Application::End(); };
    one<CommandButton>(u"Command7").Click = [] {
      throw RuntimeError(ErrorNumber::PathFileAccessError);
    };
  }

  void wireForm2() {
    form2_.control<CommandButton>(u"Command1").Click = [this] {
      platform_.application.Unload(form2_);
    };
    form2_.Unload = [this](std::int16_t&) { form1_.Enabled = true; };
  }

  void ask(std::int16_t& Cancel) {
    if (gPage_ == 3) return;
    const BoxAnswer answer =
        platform_.dialogs.MsgBox(u"Do you want to leave?", box_style::yesNoQuestion, u"Toy");
    if (answer == BoxAnswer::No) Cancel = -1;
  }

  void openForm2() {
    form1_.Enabled = false;
    platform_.application.Show(form2_);
  }

  void goOn() {
    if (++gPage_ == 2) {
      one<Frame>(u"Frame1(1)").Visible = false;
      one<Frame>(u"Frame1(2)").Visible = true;
      one<CommandButton>(u"Command2").Caption = u"Run";
      return;
    }
    if (gPage_ == 3) run();
  }

  void run() {
    for (std::int32_t step = 1; step <= 8; ++step) {
      one<Label>(u"Label12").Caption = join(u"file", decimal(step));
      one<Label>(u"Label8").Caption = join(decimal(step * 12), u"%");
      one<Label>(u"Label7").Width = step * 375;
      writeFile(step);
      platform_.application.DoEvents();
    }
    platform_.dialogs.MsgBox(u"Done.", box_style::information, u"Toy");
  }

  void writeFile(std::int32_t step) {
    const std::int32_t number = platform_.files.FreeFile();
    platform_.files.OpenOutput(number, join(u"C:\\toy", decimal(step), u".txt"));
    platform_.files.Print(number, u"made");
    platform_.files.Close(number);
  }

  Platform& platform_;
  Form form1_{form1Design};
  Form form2_{form2Design};
  Text gName_ = u"  ";
  std::int32_t gPage_ = 1;
};

}  // namespace

std::unique_ptr<simulator::PlayedProgram> makeToyProgram(Platform& platform) {
  return std::make_unique<ToyProgram>(platform);
}

}  // namespace zev::scenario
