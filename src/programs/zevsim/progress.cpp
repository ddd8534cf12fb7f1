#include "programs/zevsim/progress.h"

#include <algorithm>
#include <cmath>

#include "programs/zevsim/text_block.h"
#include "scenario/script.h"

namespace zev::simulator {
namespace {

constexpr int longestBar = 40;
constexpr std::string_view clearToEnd = "\x1b[K";

bool isBar(const PropertyBase& property) {
  return property.name() == "Width" && property.owner().name() == u"Label7";
}

bool isFigure(const PropertyBase& property) {
  return property.name() == "Caption" && property.owner().name() == u"Label8";
}

bool isFile(const PropertyBase& property) {
  return property.name() == "Caption" && property.owner().name() == u"Label12";
}

/// How much of its container the bar fills, 0 to 1.
double filled(const Form& form) {
  const Control* bar = form.findControl(u"Label7");
  if (bar == nullptr || bar->container() == nullptr || bar->container()->Width <= 0) return 0;
  const double share = static_cast<double>(bar->Width) / bar->container()->Width;
  return std::clamp(share, 0.0, 1.0);
}

std::string captionOf(const PropertyBase& property) {
  return toUtf8(std::get<Text>(property.value()));
}

/// A blank for each line end: CR LF, or either of them alone.
std::string oneLine(std::string_view text) {
  std::string line;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text.substr(at).starts_with("\r\n")) continue;
    line += text[at] == '\r' || text[at] == '\n' ? ' ' : text[at];
  }
  return line;
}

}  // namespace

void Progress::propertyWritten(const Form& form, const PropertyBase& property) {
  const auto* control = dynamic_cast<const Control*>(&property.owner());
  if (form.name() != u"Form1" || !form.Visible || control == nullptr || !control->showing()) return;
  if (isFigure(property)) figure_ = captionOf(property);
  if (isFile(property)) file_ = oneLine(captionOf(property));
  if (terminal_ && (isBar(property) || isFigure(property) || isFile(property))) {
    drawBar(filled(form));
  } else if (isFile(property) && !file_.empty()) {
    out_ << (figure_.empty() ? "0%" : figure_) << "  " << file_ << std::endl;
  }
}

void Progress::drawBar(double share) {
  const int columns = std::min(longestBar, columns_ / 2 + 1);
  const auto full = static_cast<int>(std::lround(share * columns));
  const Text bar = join(u"[", repeated(full, u'#'), repeated(columns - full, u'.'), u"] ");
  const Text line = join(bar, fromUtf8(figure_), u"  ");
  out_ << "\r" << toUtf8(line) << toUtf8(endOf(fromUtf8(file_), columns_ - columnsOf(line)))
       << clearToEnd << std::flush;
  lineOpen_ = true;
}

void Progress::boxAnswered(const scenario::Box& box, BoxAnswer answer) {
  finish();
  out_ << "[" << toUtf8(box.title) << "] " << oneLine(toUtf8(box.text)) << "  -> "
       << answerName(answer) << std::endl;
}

void Progress::finish() {
  if (lineOpen_) out_ << std::endl;
  lineOpen_ = false;
}

}  // namespace zev::simulator
