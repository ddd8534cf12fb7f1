#include "simulated/transcript.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace zev::simulated {
namespace {

/// Writes one alternative of an argument or of an outcome.
struct Written {
  Event operator()(std::monostate) const { return nullptr; }
  Event operator()(bool flag) const { return flag; }
  Event operator()(std::int64_t number) const { return number; }
  Event operator()(std::uint64_t number) const { return number; }
  Event operator()(TextView text) const { return toUtf8(text); }
  Event operator()(const Text& text) const { return toUtf8(text); }
  Event operator()(observed::Raised raised) const { return {{"raised", raised.number}}; }
};

}  // namespace

bool onDemandOnly(std::string_view kind) { return kind == "call" || kind == "refresh"; }

void CallEvents::called(const observed::Operation& operation, observed::Arguments arguments,
                        const observed::Outcome& outcome) {
  Event list = Event::list();
  for (const observed::Argument& each : arguments) list.push_back(std::visit(Written(), each));
  transcript_.add({{"event", "call"},
                   {"name", operation.name},
                   {"arguments", std::move(list)},
                   {"result", std::visit(Written(), outcome)}});
}

std::vector<Event> TranscriptLog::of(std::string_view kind) const {
  std::vector<Event> found;
  std::copy_if(events_.begin(), events_.end(), std::back_inserter(found),
               [&](const Event& event) { return event.at("event") == kind; });
  return found;
}

}  // namespace zev::simulated
