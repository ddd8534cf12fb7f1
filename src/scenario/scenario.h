#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "scenario/script.h"

namespace zev::scenario {

/// How the installer's file is made of a file of the host. The ends are cut first, then the length
/// is set, then single bytes are inverted.
struct Package {
  std::optional<std::filesystem::path> file;  ///< none: a bare image; need not be there yet
  std::uint64_t cutEnd = 0;                   ///< bytes taken off the end
  std::uint64_t cutStart = 0;                 ///< bytes taken off the beginning
  std::optional<std::uint64_t> keepEnd;       ///< keeps that number of bytes at the end
  std::optional<std::uint64_t> length;        ///< of the result; a shorter file gets zeros in front
  std::vector<std::uint64_t> flip;            ///< offsets of bytes to invert
  std::string path;                           ///< in the document, for messages
};

/// Length of the installer of a scenario without a package.
inline constexpr std::size_t bareImageLength = 1'000'000;

/// A machine, what a person does at it, and what must then hold.
struct Scenario {
  std::string name;
  MachineChange machine;
  Package package;
  std::vector<Step> script;
};

/// Reads a scenario from its text; the host's files in it are relative to `folder`. Fails with a
/// ScenarioError.
Scenario parseScenario(std::string_view text, const std::filesystem::path& folder = {});
/// Reads the file of a scenario, or a case of it (`table.json#case`). One that cannot be read is a
/// ScenarioError as well.
Scenario readScenario(const std::filesystem::path& file);
/// The same scenario as a document in which nothing is named any more.
Json writtenOut(const std::filesystem::path& file);

/// Of which bytes the installer's file is made: zeros, and behind them a piece of a file of the
/// host.
struct InstallerBytes {
  std::optional<std::filesystem::path> file;  ///< none if `size` is 0
  std::uint64_t zeros = 0;
  std::uint64_t offset = 0;             ///< of the piece, in the file
  std::uint64_t size = 0;               ///< of the piece
  std::vector<std::uint64_t> inverted;  ///< offsets of bytes that are inverted then

  std::uint64_t length() const { return zeros + size; }
};

/// Fails with a ScenarioError if the file of the host is not there or the cuts do not fit it. None
/// of it is read.
InstallerBytes makeInstaller(const Package& package);

}  // namespace zev::scenario
