#include "simulated/transcript.h"

#include <algorithm>
#include <iterator>

namespace zev::simulated {

bool onDemandOnly(std::string_view kind) { return kind == "call" || kind == "refresh"; }

std::vector<Event> TranscriptLog::of(std::string_view kind) const {
  std::vector<Event> found;
  std::copy_if(events_.begin(), events_.end(), std::back_inserter(found),
               [&](const Event& event) { return event.at("event") == kind; });
  return found;
}

}  // namespace zev::simulated
