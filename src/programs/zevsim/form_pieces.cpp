#include "programs/zevsim/form_pieces.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "programs/zevsim/text_block.h"

namespace zev::simulator {

// ---- laying pieces out

namespace {

/// Pieces side by side, and the blank lines above them.
struct Band {
  int row = 0;
  int blank = 0;
  std::vector<Piece> pieces;
};

int leastWidth(const std::vector<Piece>& pieces) {
  int width = -1;
  for (const Piece& each : pieces) width += each.least + 1;
  return width;
}

/// A piece joins those of its row as long as all can stand side by side.
std::vector<Band> bandsOf(std::vector<Piece> pieces, int columns) {
  std::stable_sort(pieces.begin(), pieces.end(), [](const Piece& first, const Piece& second) {
    return std::pair(first.row, first.column) < std::pair(second.row, second.column);
  });
  std::vector<Band> bands;
  for (Piece& piece : pieces) {
    piece.least = std::min(piece.least, columns);
    const bool joins = !bands.empty() && bands.back().row == piece.row &&
                       leastWidth(bands.back().pieces) + 1 + piece.least <= columns;
    if (!joins) bands.push_back({piece.row, 0, {}});
    bands.back().pieces.push_back(std::move(piece));
  }
  return bands;
}

/// Moves pieces to the right of those before them, and then back within the width.
void spread(std::vector<Piece>& pieces, int columns) {
  int from = 0;
  for (Piece& each : pieces) {
    each.column = std::max(each.column, from);
    each.width = std::max(each.width, each.least);
    from = each.column + each.width + 1;
  }
  int end = columns;
  for (auto each = pieces.rbegin(); each != pieces.rend(); ++each) {
    each->width = std::clamp(end - each->column, each->least, each->width);
    each->column = std::min(each->column, end - each->width);
    end = each->column - 1;
  }
}

std::vector<Text> linesOf(const Piece& piece) { return piece.lines(piece.width, piece.height); }

int heightOf(const Band& band) {
  std::size_t height = 0;
  for (const Piece& each : band.pieces) height = std::max(height, linesOf(each).size());
  return static_cast<int>(height);
}

int heightOf(const std::vector<Band>& bands) {
  int height = 0;
  for (const Band& each : bands) height += each.blank + heightOf(each);
  return height;
}

/// As many blank lines as the form has between its rows.
void keepDistances(std::vector<Band>& bands) {
  int end = 0;
  for (Band& band : bands) {
    band.blank = std::max(band.row - end, 0);
    end = std::max(end, band.row) + heightOf(band);
  }
}

/// Takes a blank line where most are, or a line of what is highest; false if nothing is left.
bool squeeze(std::vector<Band>& bands) {
  const auto gap = std::max_element(
      bands.begin(), bands.end(),
      [](const Band& first, const Band& second) { return first.blank < second.blank; });
  if (gap != bands.end() && gap->blank > 0) return --gap->blank, true;
  Piece* highest = nullptr;
  for (Band& band : bands) {
    for (Piece& each : band.pieces) {
      const bool higher = highest == nullptr || each.height > highest->height;
      if (each.height > each.lowest && higher) highest = &each;
    }
  }
  return highest != nullptr && (--highest->height, true);
}

/// The lines of pieces side by side.
std::vector<Text> composed(const Band& band) {
  std::vector<Text> lines(static_cast<std::size_t>(heightOf(band)));
  for (const Piece& piece : band.pieces) {
    std::size_t row = 0;
    for (const Text& line : linesOf(piece)) {
      Text& whole = lines[row++];
      whole = join(fitted(whole, piece.column), line);
    }
  }
  return lines;
}

}  // namespace

std::vector<Text> layOut(std::vector<Piece> pieces, int columns, int most) {
  std::vector<Band> bands = bandsOf(std::move(pieces), columns);
  for (Band& band : bands) spread(band.pieces, columns);
  keepDistances(bands);
  while (heightOf(bands) > most && squeeze(bands)) continue;
  std::vector<Text> lines;
  for (const Band& band : bands) {
    lines.insert(lines.end(), static_cast<std::size_t>(band.blank), Text());
    for (Text& line : composed(band)) lines.push_back(std::move(line));
  }
  return lines;
}

// ---- the pieces of a form

namespace {

constexpr int twipsPerRow = 240;
constexpr int leastText = 10;  ///< columns that a text is squeezed to
constexpr int leastLines = 3;  ///< lines that a box is squeezed to

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

/// Where a control lies on its form, in twips.
Place placeOf(const Control& control) {
  Place place{control.Left, control.Top, control.Width, control.Height};
  for (const Control* each = control.container(); each != nullptr; each = each->container()) {
    place.left += each->Left;
    place.top += each->Top;
  }
  return place;
}

// The lines of boxes.

/// Of a text in a box. Dots say that there is more.
std::vector<Text> textLines(TextView text, int width, std::size_t most) {
  std::vector<Text> lines = wrapped(text, width);
  if (lines.size() <= most) return lines;
  lines.resize(most);
  lines.back() = u"... (read shows all of it)";
  return lines;
}

/// The opened folder and what it lies in, each a step further in.
std::vector<Text> pathLines(const Text& opened) {
  std::vector<Text> lines;
  TextView rest = opened;
  while (!rest.empty()) {
    const bool root = lines.empty();
    const std::size_t end = std::min(rest.find(u'\\'), rest.size());
    const int indent = 2 * static_cast<int>(lines.size());
    lines.push_back(join(repeated(indent, u' '), rest.substr(0, root ? end + 1 : end)));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return lines;
}

/// Of a directory tree, at most `most` of them.
std::vector<Text> treeLines(const Text& opened, const FolderNames& folderNames, std::size_t most) {
  std::vector<Text> lines = pathLines(opened);
  const Text indent = repeated(2 * static_cast<int>(lines.size()), u' ');
  if (lines.size() > most) {
    lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(most));
  }
  for (const Text& name : folderNames ? folderNames(opened) : std::vector<Text>()) {
    lines.push_back(indent + name);
  }
  if (lines.size() > most) {
    lines.resize(most);
    lines.back() = indent + u"...";
  }
  return lines;
}

/// Makes the piece of one control.
struct Pen {
  const Form& form;
  const Control& control;
  int columns;
  const FolderNames& folderNames;

  int across(int twips) const {
    const int whole = form.design().width;
    return (twips * columns + whole / 2) / whole;
  }

  static int rows(int twips) { return (twips + twipsPerRow / 3) / twipsPerRow; }

  /// A piece in its place; what it shows is still to be said.
  Piece placed(int least) const {
    const Place place = placeOf(control);
    Piece piece;
    piece.column = across(place.left);
    piece.row = rows(place.top);
    piece.width = std::max(across(place.width), 1);
    piece.least = least;
    piece.height = std::max(rows(place.height), 1);
    return piece;
  }

  Text bracketed(TextView text) const {
    const bool usable = isEnabled(control);
    return join(usable ? u"[" : u":", text, usable ? u"]" : u":");
  }

  /// A label is as high as its text.
  Piece label() const {
    const Text text = shownText(control);
    Piece piece = placed(std::min(columnsOf(text), leastText));
    piece.lines = [text, middle = control.design().centred](int width, int) {
      std::vector<Text> lines = wrapped(text, width);
      for (Text& each : lines) each = middle ? centred(each, width) : each;
      return lines;
    };
    return piece;
  }

  Piece button() const {
    const Text caption = shownText(control);
    Piece piece = placed(columnsOf(caption) + 2);
    piece.width = std::max(piece.width, piece.least + 2);
    piece.lines = [pen = *this, caption](int width, int) {
      return std::vector{pen.bracketed(fitted(centred(caption, width - 2), width - 2))};
    };
    return piece;
  }

  /// An option button or check box, with a mark such as "[x]" before its caption.
  Piece choice(const Text& mark) const {
    const Text caption = shownText(control);
    const int indent = len(mark) + 1;
    Piece piece = placed(indent + std::min(columnsOf(caption), leastText));
    piece.width = std::max(piece.width, indent + columnsOf(caption));
    piece.lines = [mark, caption, indent](int width, int) {
      std::vector<Text> lines = wrapped(caption, width - indent);
      for (Text& each : lines) each.insert(0, repeated(indent, u' '));
      lines.front().replace(0, mark.size(), mark);
      return lines;
    };
    return piece;
  }

  Piece option() const {
    const TextView mark = dynamic_cast<const OptionButton&>(control).Value ? u"*" : u" ";
    return choice(isEnabled(control) ? join(u"(", mark, u")") : join(u":", mark, u":"));
  }

  Piece check() const {
    return choice(bracketed(dynamic_cast<const CheckBox&>(control).Value == 0 ? u" " : u"x"));
  }

  /// One line that a text is entered or chosen in.
  Piece field(TextView end) const {
    Piece piece = placed(leastText + 2);
    piece.lines = [pen = *this, end = Text(end)](int width, int) {
      const Text text = printable(shownText(pen.control));
      return std::vector{pen.bracketed(join(fitted(text, width - 2 - len(end)), end))};
    };
    return piece;
  }

  /// A box with the lines that `inside` gives for a width and a height.
  template <typename Inside>
  Piece box(const Inside& inside) const {
    Piece piece = placed(2 * leastText);
    piece.lowest = std::min(piece.height, leastLines);
    piece.lines = [inside](int width, int height) {
      std::vector<Text> lines = inside(width - 2, static_cast<std::size_t>(height));
      lines.resize(static_cast<std::size_t>(height));
      for (Text& each : lines) each = join(u"|", fitted(each, width - 2), u"|");
      return lines;
    };
    return piece;
  }

  Piece text() const {
    if (!control.design().multiLine) return field({});
    return box([pen = *this](int width, std::size_t height) {
      return textLines(shownText(pen.control), width, height);
    });
  }

  Piece tree() const {
    return box([pen = *this](int, std::size_t height) {
      return treeLines(shownText(pen.control), pen.folderNames, height);
    });
  }

  /// A line's place holds its two end points. It goes into the row above, clear of the text below
  /// it.
  Piece line() const {
    Piece piece = placed(1);
    piece.row = (placeOf(control).top - twipsPerRow / 2) / twipsPerRow;
    piece.width = across(control.Width - control.Left);
    piece.lines = [](int width, int) { return std::vector{repeated(width, u'-')}; };
    return piece;
  }

  Piece icon() const {
    const Text text = u"(icon)";
    Piece piece = placed(len(text));
    piece.lines = [text](int, int) { return std::vector{text}; };
    return piece;
  }

  /// A picture box with a border, which holds a progress bar and the figure on it.
  Piece picture() const {
    Piece piece = placed(2 * leastText);
    piece.lines = [pen = *this](int width, int) {
      return std::vector{join(u"[", pen.progress(width - 2), u"]")};
    };
    return piece;
  }

  Text progress(int width) const {
    Text line = repeated(width, u' ');
    for (const Control* each : form.Controls()) {
      if (each->container() != &control || !each->showing()) continue;
      const int share = control.Width > 0 ? each->Width * width / control.Width : 0;
      const Text shown = each->design().bar ? repeated(std::min(share, width), u'#')
                                            : Text(cutTo(shownText(*each), width));
      const std::size_t from = each->design().bar ? 0 : (line.size() - shown.size()) / 2;
      line.replace(from, shown.size(), shown);
    }
    return line;
  }

  std::optional<Piece> piece() const;
};

std::optional<Piece> Pen::piece() const {
  switch (control.kind()) {
    case ControlKind::Label:
    case ControlKind::Frame:
      return shownText(control).empty() ? std::nullopt : std::optional(label());
    case ControlKind::CommandButton:
      return button();
    case ControlKind::OptionButton:
      return option();
    case ControlKind::CheckBox:
      return check();
    case ControlKind::ComboBox:
    case ControlKind::DriveListBox:
      return field(u"v");
    case ControlKind::DirListBox:
      return tree();
    case ControlKind::TextBox:
      return text();
    case ControlKind::Line:
      return line();
    case ControlKind::PictureBox:
      return control.design().border ? std::optional(picture()) : std::nullopt;
    case ControlKind::Image:
      return textOf(control, "Picture").empty() ? std::nullopt : std::optional(icon());
    case ControlKind::Menu:
      return std::nullopt;
  }
  return std::nullopt;
}

/// What lies in a picture box with a border is part of its piece.
bool liesInPicture(const Control& control) {
  const Control* container = control.container();
  return container != nullptr && container->kind() == ControlKind::PictureBox &&
         container->design().border;
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

bool isEnabled(const Control& control) {
  return control.Enabled && (control.container() == nullptr || isEnabled(*control.container()));
}

std::vector<Piece> piecesOf(const Form& form, int columns, const FolderNames& folderNames) {
  std::vector<Piece> pieces;
  for (const Control* each : form.Controls()) {
    if (!each->showing() || liesInPicture(*each)) continue;
    if (auto piece = Pen{form, *each, columns, folderNames}.piece()) {
      pieces.push_back(std::move(*piece));
    }
  }
  return pieces;
}

}  // namespace zev::simulator
