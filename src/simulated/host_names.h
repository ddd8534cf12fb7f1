#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "runtime/text.h"

struct inotify_event;

namespace zev::simulated {

/// The names in folders of the host, which tells the case of letters apart where the machine does
/// not. A folder that was read stays known as long as the system tells what becomes of it, whoever
/// changes it; one of which it does not tell (on another computer's drive, or where no more can be
/// watched) is read at each question.
class HostNames {
 public:
  HostNames() = default;
  ~HostNames();
  HostNames(const HostNames&) = delete;
  HostNames& operator=(const HostNames&) = delete;

  /// A folder of the host, wherever it now is: device and number.
  using Identity = std::pair<std::uint64_t, std::uint64_t>;

  /// How a folder has a name, whatever the case of its letters: as it stands, if it has it so, and
  /// else one that is equal. None if there is none, or no folder.
  std::optional<std::string> find(const std::string& folder, const Identity& identity,
                                  const Text& name);

  /// How often a folder was read.
  std::uint64_t reads() const { return reads_; }

 private:
  struct Listing {
    std::unordered_map<Text, std::vector<std::string>> names;  ///< by their text in lower case

    bool whole = false;  ///< nothing kept the folder from being read to its end

    void add(const std::string& name);
    void drop(const std::string& name);
    std::optional<std::string> find(const Text& name) const;
  };

  bool watches();
  void follow();
  void take(const inotify_event& event);
  void forget(int watch);
  void forgetAll();
  Listing* known(const std::string& folder, const Identity& identity);
  Listing read(const std::string& folder);

  int changes_ = -1;   ///< the descriptor that tells of changes; -1: none yet
  bool none_ = false;  ///< the system has none to give
  std::map<Identity, Listing> listings_;
  std::unordered_map<int, Identity> watched_;
  std::uint64_t reads_ = 0;
};

}  // namespace zev::simulated
