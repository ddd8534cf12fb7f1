#include "state/form1.h"

#include <algorithm>

#include "state/languages.h"

namespace zev {
namespace {

using Kind = ControlKind;

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

}  // namespace

Form1::Form1() : Form(form1Design) { Combo1.designList(languageEntries()); }

Frame& Form1::Frame1(int index) const {
  return control<Frame>(join(u"Frame1(", decimal(index), u")"));
}

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
