#include "scenario/form_drawing.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace zev::scenario {
namespace {

constexpr int twipsPerColumn = 75;
constexpr int twipsPerRow = 240;

/// A place on the canvas, in columns and rows.
struct Area {
  int column = 0;
  int row = 0;
  int width = 0;
  int height = 0;
};

/// A rectangle of characters, one a column.
class Canvas {
 public:
  Canvas(int columns, int rows)
      : rows_(static_cast<std::size_t>(std::max(rows, 1)),
              Text(static_cast<std::size_t>(std::max(columns, 1)), u' ')) {}

  /// Puts a text; what does not lie on the canvas is cut off.
  void put(int column, int row, TextView text) {
    if (row < 0 || row >= static_cast<int>(rows_.size())) return;
    Text& line = rows_[static_cast<std::size_t>(row)];
    for (const char16_t unit : text) {
      if (column >= 0 && column < static_cast<int>(line.size())) {
        line[static_cast<std::size_t>(column)] = unit;
      }
      ++column;
    }
  }

  const std::vector<Text>& rows() const { return rows_; }

 private:
  std::vector<Text> rows_;
};

Text repeated(int count, char16_t unit) {
  return Text(static_cast<std::size_t>(std::max(count, 0)), unit);
}

Text fitted(TextView text, int width) {
  Text fit(text.substr(0, static_cast<std::size_t>(std::max(width, 0))));
  return fit + repeated(width - len(fit), u' ');
}

Text centred(TextView text, int width) {
  return join(repeated((width - len(text)) / 2, u' '), text);
}

/// Breaks a text at its line ends and at blanks, so that no line is longer than `width`.
std::vector<Text> wrapped(TextView text, int width) {
  const auto most = static_cast<std::size_t>(std::max(width, 1));
  std::vector<Text> lines;
  while (true) {
    const std::size_t end = std::min(text.find_first_of(u"\r\n"), text.size());
    TextView line = text.substr(0, end);
    while (line.size() > most) {
      const std::size_t blank = line.rfind(u' ', most);
      const std::size_t cut = blank == TextView::npos || blank == 0 ? most : blank;
      lines.emplace_back(line.substr(0, cut));
      line = ltrim(line.substr(cut));
    }
    lines.emplace_back(line);
    if (end == text.size()) return lines;
    text.remove_prefix(end + (text.substr(end).starts_with(lineEnd) ? 2 : 1));
  }
}

/// A caption without the marks of access keys: "&Ok" shows "Ok", "&&" shows "&".
Text withoutAccessKey(TextView caption) {
  Text shown;
  for (std::size_t place = 0; place < caption.size(); ++place) {
    if (caption[place] == u'&' && ++place == caption.size()) break;
    shown += caption[place];
  }
  return shown;
}

Text textOf(const Control& control, std::string_view property) {
  const PropertyBase* found = control.findProperty(property);
  if (found == nullptr) return {};
  const PropertyValue value = found->value();
  const Text* text = std::get_if<Text>(&value);
  return text == nullptr ? Text() : *text;
}

bool enabled(const Control& control) {
  return control.Enabled && (control.container() == nullptr || enabled(*control.container()));
}

/// The area of a control on its form.
Area areaOf(const Control& control) {
  int left = control.Left;
  int top = control.Top;
  for (const Control* each = control.container(); each != nullptr; each = each->container()) {
    left += each->Left;
    top += each->Top;
  }
  const auto columns = [](int twips) { return (twips + twipsPerColumn / 2) / twipsPerColumn; };
  const auto rows = [](int twips) { return (twips + twipsPerRow / 3) / twipsPerRow; };
  return {columns(left), rows(top), columns(control.Width), std::max(rows(control.Height), 1)};
}

/// The lines of a directory tree, at most `most` of them.
std::vector<Text> treeLines(const Text& opened, const FolderNames& folderNames, std::size_t most) {
  std::vector<Text> lines;
  TextView rest = opened;
  int depth = 0;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(u'\\'), rest.size());
    const TextView name = depth == 0 ? rest.substr(0, end + 1) : rest.substr(0, end);
    lines.push_back(join(repeated(2 * depth++, u' '), name));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  if (lines.size() > most)
    lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(most));
  for (const Text& name : folderNames ? folderNames(opened) : std::vector<Text>()) {
    lines.push_back(join(repeated(2 * depth, u' '), name));
  }
  if (lines.size() > most) {
    lines.resize(most);
    lines.back() = join(repeated(2 * depth, u' '), u"...");
  }
  return lines;
}

/// Draws one kind of control. `open` and `close` are its brackets.
struct Pen {
  Canvas& canvas;
  const Control& control;
  Area area;
  Text open;
  Text close;
  const FolderNames& folderNames;

  void line(TextView text) { canvas.put(area.column, area.row, text); }

  void drawLabel() {
    if (control.design().bar) return line(repeated(area.width, u'#'));
    int row = area.row;
    for (const Text& each : wrapped(shownText(control), area.width)) {
      if (row >= area.row + area.height) return;
      const int indent = control.design().centred ? (area.width - len(each)) / 2 : 0;
      canvas.put(area.column + std::max(indent, 0), row++, each);
    }
  }

  void drawButton() {
    const Text caption = shownText(control);
    const int inside = std::max(area.width - 2, len(caption) + 2);
    const Text middle = fitted(centred(caption, inside), inside);
    line(join(open, middle, close));
  }

  void drawChoice(TextView mark) { line(join(open, mark, close, u" ", shownText(control))); }

  void drawField(TextView text, TextView end) {
    line(join(open, fitted(text, area.width - 2 - len(end)), end, close));
  }

  void drawTextBox() {
    const Text text = shownText(control);
    if (!control.design().multiLine) return drawField(text, {});
    drawLines(wrapped(text, area.width - 4));
  }

  void drawTree() {
    drawLines(treeLines(shownText(control), folderNames, static_cast<std::size_t>(area.height)));
  }

  void drawLines(const std::vector<Text>& lines) {
    for (int row = 0; row < area.height; ++row) {
      const auto place = static_cast<std::size_t>(row);
      const Text shown = place < lines.size() ? lines[place] : Text();
      canvas.put(area.column, area.row + row, join(u"|", fitted(shown, area.width - 2), u"|"));
    }
  }

  /// A line's place holds its two end points. It goes into the row above, clear of the text below
  /// it.
  void drawLine() {
    const int columns = (control.Width - control.Left) / twipsPerColumn;
    canvas.put(area.column, (areaTop() - twipsPerRow / 2) / twipsPerRow, repeated(columns, u'-'));
  }

  int areaTop() const {
    const Control* container = control.container();
    return control.Top + (container == nullptr ? 0 : container->Top);
  }

  void drawPicture() {
    if (control.design().border) line(join(u"[", fitted({}, area.width - 2), u"]"));
  }

  void draw();
};

Text brackets(const Control& control, TextView whenEnabled) {
  return enabled(control) ? Text(whenEnabled) : Text(u":");
}

void Pen::draw() {
  switch (control.kind()) {
    case ControlKind::Label:
    case ControlKind::Frame:
      return drawLabel();
    case ControlKind::CommandButton:
      return drawButton();
    case ControlKind::OptionButton:
      return drawChoice(dynamic_cast<const OptionButton&>(control).Value ? u"*" : u" ");
    case ControlKind::CheckBox:
      return drawChoice(dynamic_cast<const CheckBox&>(control).Value == 0 ? u" " : u"x");
    case ControlKind::ComboBox:
    case ControlKind::DriveListBox:
      return drawField(shownText(control), u"v");
    case ControlKind::DirListBox:
      return drawTree();
    case ControlKind::TextBox:
      return drawTextBox();
    case ControlKind::Line:
      return drawLine();
    case ControlKind::PictureBox:
      return drawPicture();
    case ControlKind::Image:
      if (!textOf(control, "Picture").empty()) line(u"(icon)");
      return;
    case ControlKind::Menu:
      return;
  }
}

void drawControl(Canvas& canvas, const Control& control, const FolderNames& folderNames) {
  const bool round = control.kind() == ControlKind::OptionButton;
  Pen pen{canvas,
          control,
          areaOf(control),
          brackets(control, round ? u"(" : u"["),
          brackets(control, round ? u")" : u"]"),
          folderNames};
  pen.draw();
}

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

Text described(const Control& control, const Control* focused) {
  Text shown(left(shownText(control), 30));
  if (control.design().multiLine) shown.clear();
  const Text name = join(&control == focused ? u">" : u"", control.name());
  return shown.empty() ? name : join(name, u" \"", shown, u"\"");
}

}  // namespace

Text shownText(const Control& control) {
  switch (control.kind()) {
    case ControlKind::TextBox:
    case ControlKind::ComboBox:
      return textOf(control, "Text");
    case ControlKind::DriveListBox:
      return textOf(control, "Drive");
    case ControlKind::DirListBox:
      return textOf(control, "Path");
    default:
      return withoutAccessKey(textOf(control, "Caption"));
  }
}

std::string drawForm(const Form& form, const FolderNames& folderNames) {
  const int columns = form.design().width / twipsPerColumn + 1;
  const int rows = (form.design().height + twipsPerRow - 1) / twipsPerRow;
  Canvas canvas(columns, rows);
  for (const Control* each : form.Controls()) {
    if (each->showing()) drawControl(canvas, *each, folderNames);
  }
  const Text caption(left(form.Caption.get(), columns - 4));
  std::string drawing =
      toUtf8(join(u"+- ", caption, u" ", repeated(columns - 3 - len(caption), u'-'), u"-+\n"));
  for (const Text& row : canvas.rows()) drawing += toUtf8(join(u"| ", row, u"|\n"));
  return drawing + toUtf8(join(u"+", repeated(columns + 1, u'-'), u"+\n"));
}

std::string listControls(const Form& form, const Control* focused) {
  Text usable;
  Text disabled;
  for (const Control* each : form.Controls()) {
    if (!listed(*each)) continue;
    Text& line = enabled(*each) && form.Enabled ? usable : disabled;
    line += join(u"  ", described(*each, focused));
  }
  std::string lines;
  if (!usable.empty()) lines += "use:     " + toUtf8(usable) + "\n";
  if (!disabled.empty()) lines += "disabled:" + toUtf8(disabled) + "\n";
  return lines;
}

}  // namespace zev::scenario
