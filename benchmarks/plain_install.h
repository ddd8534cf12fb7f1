#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

#include "lz_corpus.h"
#include "simulated/transcript.h"

namespace zev::benchmarks {

/// The reads and writes of an install without its expansion, straight through the calls of the
/// host: each member is read from the package and written to its work file; the work file is read,
/// and the bytes that it expands to are written to the target, piece by piece as the expansion
/// would; at the end what the install deleted is deleted.
class PlainInstall {
 public:
  /// Takes the members, their targets and what is deleted from the events of an install, and
  /// expands each member once to learn its pieces. Throws std::runtime_error if a member does not
  /// expand.
  PlainInstall(Bytes package, const std::vector<simulated::Event>& events);

  /// Lays the package and the folders under a folder of the host, which is empty.
  void prepare(const std::filesystem::path& folder) const;
  /// Reads and writes under a folder that was prepared. Throws std::system_error where the host
  /// refuses.
  void play(const std::filesystem::path& folder) const;
  /// Expands all members in memory, through the sizes of pieces that an install has.
  void expandOnly() const;

  std::size_t members() const { return members_.size(); }
  std::uint64_t packedBytes() const;
  std::uint64_t expandedBytes() const;

 private:
  /// A read from the work file, or a write to the target.
  struct Transfer {
    bool reads;
    std::size_t bytes;
  };
  class RecordingSource;
  class RecordingSink;

  /// Paths are relative to the folder.
  struct Member {
    std::uint64_t offset;  ///< in the package, in bytes
    std::size_t size;
    std::filesystem::path workFile;
    std::filesystem::path target;
    std::vector<Transfer> transfers;
    Bytes expanded;
  };

  void addMember(std::uint64_t offset, std::size_t size, std::filesystem::path workFile,
                 std::filesystem::path target);
  static void layTarget(const std::filesystem::path& folder, const Member& member);

  Bytes package_;
  std::vector<Member> members_;
  std::vector<std::filesystem::path> deleted_;
};

}  // namespace zev::benchmarks
