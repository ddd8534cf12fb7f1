#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace zev::house {

/// The texts in quotes of a C++ source, as they are written there; what stands in a comment is
/// none.
std::vector<std::string> textsOf(std::string_view source);

/// The same of a Python source; what stands in three quotes counts as a comment.
std::vector<std::string> pythonTextsOf(std::string_view source);

/// The C++ and Python files that a CMakeLists.txt names, comments aside. A variable in front of a
/// name, which stands for a folder, is left out.
std::vector<std::string> sourcesOf(std::string_view cmake);

/// The tables of `tests`/data, by their path there, that no program of tests reads: none of its
/// files, and no header of the tests that they include, has the table's path as a text of its own.
/// Programs are those that the CMakeLists.txt of a folder names, in C++ or Python.
std::set<std::string> unreadTables(const std::filesystem::path& tests);

}  // namespace zev::house
