#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "programs/zevpack/host_file.h"
#include "support/temporary_folder.h"

namespace zev::packing {

/// What a program left behind: its exit status and what it printed.
struct Outcome {
  int status = -1;  ///< -1 if it ended by a signal or could not be started
  std::string out;
  std::string err;
};

/// Runs a program by way of the shell, with each argument quoted. `before` is shell text that is
/// run first in the same shell.
Outcome runProgram(const std::string& program, const std::vector<std::string>& arguments,
                   const std::string& before = "");

/// The names of all that stands in a folder.
std::set<std::string> namesIn(const std::filesystem::path& folder);

std::vector<std::string> linesOf(const std::string& text);

/// A test of the tool itself, with an empty folder of its own.
class ToolTest : public testing::Test {
 protected:
  std::filesystem::path at(const std::string& name) const { return folder_.path() / name; }

  static Outcome zevpack(const std::vector<std::string>& arguments,
                         const std::string& before = "") {
    return runProgram(ZEVPACK_TOOL, arguments, before);
  }

 private:
  test::TemporaryFolder folder_;
};

}  // namespace zev::packing
