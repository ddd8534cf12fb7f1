#include "programs/zevsim/form_drawing.h"

#include <algorithm>
#include <vector>

#include "programs/zevsim/text_block.h"

namespace zev::simulator {
namespace {

constexpr int twipsPerColumn = 75;
constexpr int longestCaption = 40;
constexpr TextView useHeading = u"use:       ";
constexpr TextView disabledHeading = u"disabled:  ";
constexpr TextView noHeading = u"           ";

bool listed(const Control& control) {
  switch (control.kind()) {
    case ControlKind::Label:
    case ControlKind::Frame:
    case ControlKind::Line:
    case ControlKind::Menu:
    case ControlKind::PictureBox:
      return false;
    default:
      return control.showing();
  }
}

Text described(const Control& control, const Control* focused, int columns) {
  const Text name = join(&control == focused ? u">" : u"", control.name());
  const Text whole = control.design().multiLine ? Text() : shownText(control);
  const Text shown = beginningOf(whole, std::min(longestCaption, columns - len(name) - 3));
  return shown.empty() ? name : join(name, u" \"", shown, u"\"");
}

/// A heading and words after it, in as many lines as they take.
std::string headed(TextView heading, const std::vector<Text>& words, int columns) {
  Text lines;
  for (const Text& line : wrappedWords(words, columns)) {
    lines += join(lines.empty() ? heading : noHeading, line, u"\n");
  }
  return toUtf8(lines);
}

}  // namespace

std::string drawForm(const Form& form, const Sheet& sheet, const FolderNames& folderNames) {
  const int natural = (form.design().width + twipsPerColumn - 1) / twipsPerColumn;
  const int columns = std::min(natural, sheet.columns - frameColumns);
  const auto lines =
      layOut(piecesOf(form, columns, folderNames), columns, sheet.lines - frameLines);
  return framed(form.Caption.get(), lines, columns);
}

std::string listControls(const Form& form, const Control* focused, int columns) {
  std::vector<Text> usable;
  std::vector<Text> disabled;
  const int room = columns - len(noHeading);
  for (const Control* each : form.Controls()) {
    if (!listed(*each)) continue;
    (isEnabled(*each) && form.Enabled ? usable : disabled)
        .push_back(described(*each, focused, room));
  }
  return headed(useHeading, usable, room) + headed(disabledHeading, disabled, room);
}

}  // namespace zev::simulator
