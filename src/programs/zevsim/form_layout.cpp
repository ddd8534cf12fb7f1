#include "programs/zevsim/form_layout.h"

#include <algorithm>

#include "programs/zevsim/text_block.h"

namespace zev::scenario {
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

}  // namespace zev::scenario
