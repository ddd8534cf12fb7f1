#pragma once

#include <cstdint>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "simulated/disks.h"
#include "simulated/transcript.h"

namespace zev::simulator {

/// The kinds of event that a transcript can hold.
const std::vector<std::string_view>& eventKinds();

/// What a run did, counted from its events.
struct Tally {
  std::set<Text> written;    ///< paths of files, in upper case
  std::size_t settings = 0;  ///< registry values that were set; settings in files are written files
  std::size_t boxes = 0;     ///< message boxes
};

/// Writes events as JSON Lines, and counts what a summary tells. It writes the kinds that are
/// selected; without a selection all but those on demand.
class EventWriter final : public simulated::Transcript {
 public:
  /// `out` null: nothing is written.
  EventWriter(std::ostream* out, const std::vector<std::string>& selected);

  bool wants(std::string_view kind) const override;
  void add(simulated::Event event) override;

  const Tally& tally() const { return tally_; }

 private:
  bool selects(std::string_view kind) const;
  void count(std::string_view kind, const simulated::Event& event);

  std::ostream* out_;
  std::set<std::string, std::less<>> selected_;
  Tally tally_;
};

}  // namespace zev::simulator
