#include "state/form2.h"

namespace zev {
namespace {

using Kind = ControlKind;

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

}  // namespace

Form2::Form2() : Form(form2Design) {}

}  // namespace zev
