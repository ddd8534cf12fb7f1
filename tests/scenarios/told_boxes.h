#pragma once

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "simulated/transcript.h"

namespace zev {

/// A message box as it must stand on the screen, in English.
struct ToldBox {
  std::string text;
  std::string title;
  int style = 0;

  bool operator==(const ToldBox&) const = default;
};
std::ostream& operator<<(std::ostream& out, const ToldBox& box);

/// What the places of a box's text, such as {number}, are filled with.
using Filling = std::map<std::string, std::string>;

/// The text with every {place} filled. Throws std::out_of_range for a place that has no filling.
std::string filled(const std::string& text, const Filling& filling);

/// A box of boxes.tsv by its name.
ToldBox toldBox(const std::string& name, const Filling& filling = {});
/// The boxes of a member that could not be copied out, or not be expanded (manifest_failures.tsv).
ToldBox extractionBox(int row);
ToldBox expansionBox(int row);
/// The box of an open that failed while a member was expanded (expand_open_codes.tsv), by the
/// system's error.
ToldBox openBox(int error, const std::string& path);
/// The box of a copy that failed while a member was expanded, by the detail's value in
/// expand_copy_codes.tsv.
ToldBox copyBox(int value, const std::string& source);
/// The box of a drive that the check of the destination refuses (drive_types.tsv).
ToldBox driveBox(int type, const std::string& root);

/// A message box as a transcript tells of it.
ToldBox shownBox(const simulated::Event& box);
/// The message boxes of a transcript, in order.
std::vector<ToldBox> shownBoxes(const std::vector<simulated::Event>& boxes);

}  // namespace zev
