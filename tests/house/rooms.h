#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace zev::house {

/// The rooms that each room links directly, by name.
using Arrows = std::map<std::string, std::set<std::string>>;

/// What a source file includes: in angle brackets and in quotes.
struct Includes {
  std::vector<std::string> system;
  std::vector<std::string> own;
};

Includes includesOf(std::string_view source);

/// The names of an operating system or compiler that a source file asks for by the preprocessor.
std::vector<std::string> systemsAskedFor(std::string_view source);

/// The namespaces of the project that a source file opens, by their whole names as they are
/// written, in their order. Unnamed ones and other names for a namespace are left out.
std::vector<std::string> namespacesOf(std::string_view source);

/// What a room's CMakeLists.txt names behind KNOWS, but for libraries of others ("Name::name").
std::set<std::string> knownRooms(std::string_view cmake);

/// The room itself and all that it knows, directly or through others.
std::set<std::string> reach(const Arrows& arrows, const std::string& room);

/// The arrows of all rooms under a folder.
Arrows readArrows(const std::filesystem::path& src);

struct SourceFile {
  std::string name;  ///< from the folder `src` on, with slashes
  std::string contents;
};

/// All C++ files of a room, folders within it included.
std::vector<SourceFile> filesOf(const std::filesystem::path& src, const std::string& room);

std::string contentsOf(const std::filesystem::path& file);

}  // namespace zev::house
