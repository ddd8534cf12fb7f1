#pragma once

#include <cstdint>
#include <map>

#include "platform/file_system.h"
#include "runtime/text.h"

namespace zev::simulated {

/// What is done with an entry, and what others may do with it meanwhile: bits of both.
namespace sharing {
inline constexpr std::uint8_t reading = 1;
inline constexpr std::uint8_t writing = 2;
inline constexpr std::uint8_t deleting = 4;
}  // namespace sharing

/// How one handle has its entry open.
struct Opening {
  std::uint8_t access = 0;  ///< of `sharing`
  std::uint8_t shared = 0;  ///< of `sharing`, what it grants the others
};

/// As an open file has it: nobody deletes what is open.
Opening openingOf(FileAccess access, FileShare share);
/// As an entry is held: of a directory, "writing" means its entries.
Opening openingOf(Holding holding, bool directory);

/// What all processes of one machine have open, and so what the next one may.
class Sharing {
 public:
  /// Whether an entry can be opened so beside all that have it open.
  bool allows(const Text& entry, Opening wanted) const;
  /// Puts a handle on record; `remove` takes it off again.
  std::uint64_t add(const Text& entry, Opening opening);
  void remove(std::uint64_t handle);

 private:
  struct Open {
    Text entry;
    Opening opening;
  };
  std::map<std::uint64_t, Open> open_;
  std::uint64_t last_ = 0;
};

}  // namespace zev::simulated
