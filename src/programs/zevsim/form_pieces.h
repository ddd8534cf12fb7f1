#pragma once

#include <functional>
#include <vector>

#include "runtime/form.h"
#include "runtime/text.h"

namespace zev::simulator {

/// A block of text that lies somewhere on a form, in columns and rows.
struct Piece {
  int column = 0;
  int row = 0;
  int width = 1;
  int least = 1;   ///< what the width can be squeezed to
  int height = 1;  ///< of a piece that has one, such as a box with many lines
  int lowest = 1;  ///< what the height can be squeezed to
  /// Its lines in a width and a height; they may be fewer or more.
  std::function<std::vector<Text>(int width, int height)> lines;
};

/// Lays pieces out in lines of a width. Those of one row stand side by side and never over one
/// another: they are squeezed, moved, and put below one another if nothing else helps. Between rows
/// are the blank lines that the form has there, fewer where it would else have more lines than
/// `most`; then what has a height of its own becomes lower.
std::vector<Text> layOut(std::vector<Piece> pieces, int columns, int most);

/// Names of the folders in a folder of the machine.
using FolderNames = std::function<std::vector<Text>(const Text& folder)>;

/// The text that a control shows: its caption, text or selected entry, without the marks of access
/// keys.
Text shownText(const Control& control);

/// Whether the control, and all that it lies in, is enabled.
bool isEnabled(const Control& control);

/// What is to be seen of a form that is drawn `columns` wide, one piece a control. The form,
/// and `folderNames`, outlive the pieces.
std::vector<Piece> piecesOf(const Form& form, int columns, const FolderNames& folderNames);

}  // namespace zev::simulator
