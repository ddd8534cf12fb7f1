// Every message box that there is, shown in some scenario file; and no other.

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <set>

#include "scenarios/box_patterns.h"
#include "scenarios/scenario_files.h"
#include "support/table.h"

namespace zev {
namespace {

using simulated::Event;

/// The numbers under which boxes can be translated; with 5 every phrase reads the same.
constexpr int languages[] = {0, 1, 2, 3, 4, 5};

/// Boxes that no run can show, and why.
const std::map<std::string, std::string> neverShown = {
    {"registry.delete_conf", "no step of the wizard deletes a setting; the module's tests show it"},
};

/// True if a box's text is of one language and its title of another: answers that are remembered
/// outlive a language that changes without a word.
bool fitsMixed(const ToldBox& box) {
  const auto reads = [](const JoinedText& joined, const std::string& text) {
    return std::any_of(std::begin(languages), std::end(languages),
                       [&](int language) { return joined.match(text, language).has_value(); });
  };
  return std::any_of(boxPatterns().begin(), boxPatterns().end(), [&](const BoxPattern& each) {
    return each.style == box.style && reads(each.title, box.title) && reads(each.text, box.text);
  });
}

/// All that the scenario files show, each played once.
class Gallery {
 public:
  Gallery() {
    for (const std::string& file : scenarioFiles()) take(file, play(readStory(file), file).events);
  }

  std::map<std::string, std::string> shown;  ///< names of patterns, and the first file of each
  std::set<std::string> details;             ///< of failed copies
  std::vector<std::string> unknown;          ///< boxes that are no pattern's
  std::size_t boxes = 0;

 private:
  void take(const std::string& file, const std::vector<Event>& events) {
    std::map<std::string, std::size_t> counts;
    for (std::size_t place = 0; place < events.size(); ++place) {
      const std::string kind = events[place]["event"].text();
      if (kind == "box") takeBox(file, events, place, counts);
      if (kind == "input") takeInput(file, events[place]);
    }
  }

  void takeBox(const std::string& file, const std::vector<Event>& events, std::size_t place,
               std::map<std::string, std::size_t>& counts) {
    const Event& event = events[place];
    const ToldBox box = shownBox(event);
    const std::string elsewhere = shownByBrowser(events, place) ? " in validate" : " in browser";
    const std::size_t nth = ++counts[event.dump()];
    ++boxes;
    std::size_t fitting = 0;
    for (const int language : languages) {
      for (const BoxPattern* each : patternsOf(box, language)) {
        if (each->name.ends_with(elsewhere)) continue;
        ++fitting;
        // Of patterns that read alike the n-th one is shown by the n-th box of a play.
        if (placeAmongAlike(*each) <= nth) shown.emplace(each->name, file);
        if (each->name == "expand.copy_failed") {
          details.insert(each->text.match(box.text, language)->front());
        }
      }
    }
    if (fitting == 0 && !fitsMixed(box)) unknown.push_back(file + ": " + event.dump());
  }

  void takeInput(const std::string& file, const Event& event) {
    for (const int language : languages) {
      for (const BoxPattern& each : inputPatterns()) {
        if (!each.text.match(event["prompt"].text(), language)) continue;
        if (each.title.match(event["title"].text(), language)) {
          shown.emplace(each.name, file);
          return;
        }
      }
    }
    unknown.push_back(file + ": " + event.dump());
  }

  /// Two members have the same words.
  static std::size_t placeAmongAlike(const BoxPattern& pattern) {
    std::size_t place = 0;
    for (const BoxPattern& each : boxPatterns()) {
      const bool alike = each.style == pattern.style && each.title == pattern.title &&
                         each.text == pattern.text && !each.name.starts_with("drive ");
      if (alike) ++place;
      if (&each == &pattern) break;
    }
    return place;
  }
};

void expectShown(const Gallery& gallery, const std::vector<BoxPattern>& patterns) {
  for (const BoxPattern& each : patterns) {
    const auto reason = neverShown.find(each.name);
    const bool shown = gallery.shown.contains(each.name);
    EXPECT_EQ(shown, reason == neverShown.end()) << each.name;
    if (!shown && reason != neverShown.end()) {
      std::cout << each.name << " is shown by none: " << reason->second << "\n";
    }
  }
}

/// One test, since each would have to play all scenarios by itself.
TEST(Boxes, EachIsShownInSomeScenarioAndNoOther) {
  const Gallery gallery;
  expectShown(gallery, boxPatterns());
  expectShown(gallery, inputPatterns());
  for (const test::Row& row : test::Table::read("expand_copy_codes.tsv")) {
    EXPECT_TRUE(gallery.details.contains(row.quoted("detail"))) << row.where();
  }
  EXPECT_EQ(gallery.unknown, std::vector<std::string>());
  std::cout << gallery.boxes << " boxes of " << boxPatterns().size() << " kinds in "
            << scenarioFiles().size() << " scenarios" << std::endl;
}

}  // namespace
}  // namespace zev
