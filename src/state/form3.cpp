#include "state/form3.h"

namespace zev {
namespace {

using Kind = ControlKind;

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

Form3::Form3() : Form(form3Design) {}

}  // namespace zev
