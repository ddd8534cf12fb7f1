#pragma once

#include <ostream>
#include <string>

#include "runtime/form.h"
#include "scenario/play.h"

namespace zev::simulator {

/// Shows the progress of an install as the program itself shows it on its wizard: the width of the
/// bar (Form1.Label7 in its frame), the figure on it (Label8) and the file (Label12). On a terminal
/// it is one line drawn over and over, never wider than `columns`, elsewhere one line a file.
class Progress {
 public:
  Progress(std::ostream& out, bool terminal, int columns = 78)
      : out_(out), terminal_(terminal), columns_(columns) {}

  void propertyWritten(const Form& form, const PropertyBase& property);
  void boxAnswered(const scenario::Box& box, BoxAnswer answer);
  /// Ends the line that is being drawn.
  void finish();

 private:
  void drawBar(double share);

  std::ostream& out_;
  bool terminal_;
  int columns_;
  bool lineOpen_ = false;
  std::string figure_;
  std::string file_;
};

}  // namespace zev::simulator
