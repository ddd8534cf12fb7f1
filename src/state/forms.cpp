#include "state/forms.h"

#include <algorithm>

#include "state/languages.h"

namespace zev {
namespace {

using Kind = ControlKind;

// ---- Form1, the wizard

// clang-format off
constexpr ControlDesign form1Controls[] = {
    {.name = u"Frame2", .kind = Kind::Frame, .place = {90, 0, 795, 4065}, .tabIndex = 0},
    {.name = u"Picture1", .kind = Kind::PictureBox, .container = u"Frame2", .place = {135, 270, 555, 555}, .tabIndex = 1, .border = false},
    {.name = u"Image1", .kind = Kind::Image, .container = u"Picture1", .place = {15, 15, 435, 435}},

    {.name = u"Frame1", .index = 1, .kind = Kind::Frame, .place = {960, 0, 5415, 4080}, .tabIndex = 5},
    {.name = u"Label1", .kind = Kind::Label, .container = u"Frame1(1)", .place = {120, 270, 5175, 2190}, .tabIndex = 6,
     .text = u"ZEV Screen Recorder is going to be installed on your computer. Please click on the 'Next' button to determinine a directory."},
    {.name = u"Label2", .kind = Kind::Label, .container = u"Frame1(1)", .place = {180, 2010, 1125, 255}, .tabIndex = 27, .text = u"Language :"},
    {.name = u"Combo1", .kind = Kind::ComboBox, .container = u"Frame1(1)", .place = {1410, 1995, 1875, 315}, .tabIndex = 28},
    {.name = u"Line1", .kind = Kind::Line, .container = u"Frame1(1)", .place = {120, 3375, 5310, 3375}},
    {.name = u"Label4", .kind = Kind::Label, .container = u"Frame1(1)", .place = {165, 3465, 4995, 255}, .tabIndex = 20, .text = u"ZEV Screen Recorder"},
    {.name = u"Label5", .kind = Kind::Label, .container = u"Frame1(1)", .place = {165, 3735, 5055, 225}, .tabIndex = 21, .text = u"Version 6.1.8 (XP)"},

    {.name = u"Frame1", .index = 2, .kind = Kind::Frame, .place = {960, 0, 5415, 4080}, .tabIndex = 14, .visible = false},
    {.name = u"Label3", .kind = Kind::Label, .container = u"Frame1(2)", .place = {180, 390, 3735, 315}, .tabIndex = 15, .text = u"Please read before you continue :"},
    {.name = u"Text1", .kind = Kind::TextBox, .container = u"Frame1(2)", .place = {120, 900, 5145, 2115}, .tabIndex = 16, .multiLine = true, .locked = true},
    {.name = u"Option1", .kind = Kind::OptionButton, .container = u"Frame1(2)", .place = {210, 3240, 3495, 240}, .tabIndex = 17, .text = u"Yes I Agree."},
    {.name = u"Option2", .kind = Kind::OptionButton, .container = u"Frame1(2)", .place = {210, 3600, 3675, 240}, .tabIndex = 18, .text = u"No I Do Not Agree."},

    {.name = u"Frame1", .index = 3, .kind = Kind::Frame, .place = {960, 0, 5415, 4065}, .tabIndex = 7, .visible = false},
    {.name = u"Label9", .kind = Kind::Label, .container = u"Frame1(3)", .place = {180, 240, 5115, 615}, .tabIndex = 8,
     .text = u"Click on the 'Install' button to install the Screen Recorder into the following directory :"},
    {.name = u"Text2", .kind = Kind::TextBox, .container = u"Frame1(3)", .place = {180, 945, 5055, 375}, .tabIndex = 19},
    {.name = u"Command4", .kind = Kind::CommandButton, .container = u"Frame1(3)", .place = {3480, 1455, 1755, 375}, .tabIndex = 9, .text = u"Change Dir"},

    {.name = u"Frame1", .index = 4, .kind = Kind::Frame, .place = {960, 0, 5415, 4065}, .tabIndex = 10, .visible = false},
    {.name = u"Label11", .kind = Kind::Label, .container = u"Frame1(4)", .place = {120, 240, 5205, 1185}, .tabIndex = 11},
    {.name = u"Label12", .kind = Kind::Label, .container = u"Frame1(4)", .place = {135, 1710, 5175, 795}, .tabIndex = 12, .centred = true},
    {.name = u"Picture2", .kind = Kind::PictureBox, .container = u"Frame1(4)", .place = {90, 2730, 5235, 315}, .tabIndex = 24},
    {.name = u"Label7", .kind = Kind::Label, .container = u"Picture2", .place = {0, 0, 5205, 315}, .tabIndex = 25, .bar = true},
    {.name = u"Label8", .kind = Kind::Label, .container = u"Picture2", .place = {0, 0, 5205, 255}, .tabIndex = 26, .text = u"0%", .centred = true, .onBar = true},
    {.name = u"Check1", .kind = Kind::CheckBox, .container = u"Frame1(4)", .place = {3375, 3645, 1950, 195}, .tabIndex = 13, .text = u"Launch ZEV now.", .visible = false},

    {.name = u"Command6", .kind = Kind::CommandButton, .place = {960, 4185, 1125, 360}, .tabIndex = 29, .text = u"Options", .visible = false},
    {.name = u"Command3", .kind = Kind::CommandButton, .place = {3060, 4185, 1125, 360}, .tabIndex = 4, .text = u"Cancel"},
    {.name = u"Command1", .kind = Kind::CommandButton, .place = {4320, 4185, 975, 360}, .tabIndex = 2, .text = u"<< Back", .enabled = false},
    {.name = u"Command2", .kind = Kind::CommandButton, .place = {5370, 4185, 975, 360}, .tabIndex = 3, .text = u"Next >>"},
};
// clang-format on

constexpr FormDesign form1Design = {.name = u"Form1",
                                    .caption = u"ZEV Screen Recorder - Install",
                                    .icon = u"Form1",
                                    .width = 6450,
                                    .height = 4635,
                                    .cancelButton = u"Command3",
                                    .controls = form1Controls};

// ---- Form2, the options

// clang-format off
constexpr ControlDesign form2Controls[] = {
    {.name = u"Command1", .kind = Kind::CommandButton, .place = {4140, 1080, 1035, 375}, .tabIndex = 0, .text = u"OK"},
    {.name = u"Frame3", .kind = Kind::Frame, .place = {0, 120, 5175, 855}, .tabIndex = 1, .border = false},
    {.name = u"Check1", .kind = Kind::CheckBox, .container = u"Frame3", .place = {120, 0, 4935, 255}, .tabIndex = 4,
     .text = u"Install Microsoft Visual C++ 2005 Redistributables"},
    {.name = u"Check2", .kind = Kind::CheckBox, .container = u"Frame3", .place = {120, 300, 4935, 255}, .tabIndex = 3, .text = u"Create shortcuts for Start Menu"},
    {.name = u"Check3", .kind = Kind::CheckBox, .container = u"Frame3", .place = {120, 600, 4935, 255}, .tabIndex = 2, .text = u"Create shortcuts for Desktop"},
};
// clang-format on

constexpr FormDesign form2Design = {.name = u"Form2",
                                    .caption = u"Install Options",
                                    .width = 5280,
                                    .height = 1515,
                                    .toolWindow = true,
                                    .cancelButton = u"Command1",
                                    .controls = form2Controls};

// ---- Form3, the folder browser

/// In the order of the form's controls; the tab order runs from the top of the form down.
// clang-format off
constexpr ControlDesign form3Controls[] = {
    {.name = u"Command3", .kind = Kind::CommandButton, .place = {3480, 3690, 1215, 375}, .tabIndex = 7, .text = u"Cancel"},
    {.name = u"Command2", .kind = Kind::CommandButton, .place = {2145, 3690, 1215, 375}, .tabIndex = 6},
    {.name = u"Command1", .kind = Kind::CommandButton, .place = {120, 3690, 1905, 375}, .tabIndex = 5},
    {.name = u"Drive1", .kind = Kind::DriveListBox, .place = {120, 420, 4575, 315}, .tabIndex = 1},
    {.name = u"Dir1", .kind = Kind::DirListBox, .place = {120, 810, 4575, 2400}, .tabIndex = 2},
    {.name = u"Label3", .kind = Kind::Label, .place = {1650, 3300, 3045, 255}, .tabIndex = 4},
    {.name = u"Label2", .kind = Kind::Label, .place = {120, 3300, 1500, 255}, .tabIndex = 3},
    {.name = u"Label1", .kind = Kind::Label, .place = {120, 120, 4575, 255}, .tabIndex = 0},
};
// clang-format on

constexpr FormDesign form3Design = {.name = u"Form3",
                                    .caption = u"Screen Recorder",
                                    .width = 4815,
                                    .height = 4185,
                                    .cancelButton = u"Command3",
                                    .controls = form3Controls};

}  // namespace

Form1::Form1() : Form(form1Design) { Combo1.designList(languageEntries()); }

Frame& Form1::Frame1(int index) const {
  return control<Frame>(join(u"Frame1(", decimal(index), u")"));
}

Form2::Form2() : Form(form2Design) {}

Form3::Form3() : Form(form3Design) {}

Text hardWrapped(TextView text, std::size_t width) {
  Text wrapped;
  while (!text.empty()) {
    const std::size_t paragraph = std::min(text.find(lineEnd), text.size());
    std::size_t length = paragraph;
    if (length > width) {
      const std::size_t blank = text.rfind(u' ', width);
      length = blank == TextView::npos || blank == 0 ? width : blank;
    }
    wrapped += text.substr(0, length);
    text.remove_prefix(length);
    if (text.empty()) break;
    text.remove_prefix(text.starts_with(lineEnd) ? lineEnd.size() : text.front() == u' ' ? 1 : 0);
    wrapped += lineEnd;
  }
  return wrapped;
}

}  // namespace zev
