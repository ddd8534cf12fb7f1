// Against the programs mscompress and msexpand, on files of the machine at hand.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "lz/encoder.h"
#include "lz/lzss_format.h"
#include "lz/reference.h"
#include "support/temporary_folder.h"

namespace zev::lz {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFolders[] = {
    "/usr/bin",       "/usr/include",     "/usr/lib/x86_64-linux-gnu",
    "/usr/share/doc", "/usr/share/icons", "/usr/share/perl"};
constexpr std::size_t kFilesPerFolder = 60;
// mscompress makes something else of files of fewer than 16 bytes, which msexpand confirms.
constexpr std::uintmax_t kShortestFile = 16;
constexpr std::uintmax_t kLongestFile = 30000;
// Both programs read and write byte by byte. What is three times as long as the ring has been
// everywhere in it, and nothing in the format is longer: so much of each file is taken.
constexpr std::uintmax_t kMostOfAFile = 3 * kRingSize;

Bytes load(const fs::path& path, std::uintmax_t most = kLongestFile * 2) {
  std::error_code missing;
  const std::uintmax_t size = fs::file_size(path, missing);
  Bytes bytes(missing ? 0 : static_cast<std::size_t>(std::min(size, most)));
  std::ifstream(path, std::ios::binary)
      .read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

void save(const fs::path& path, const Bytes& bytes) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

// Files under `folder` in an order that is the same at each run, spread over the whole of it.
std::vector<fs::path> filesOf(const char* folder) {
  std::vector<fs::path> found;
  std::error_code ignored;
  const auto options = fs::directory_options::skip_permission_denied;
  for (fs::recursive_directory_iterator at(folder, options, ignored), end; at != end;
       at.increment(ignored)) {
    if (at->is_symlink(ignored) || !at->is_regular_file(ignored)) continue;
    const std::uintmax_t size = at->file_size(ignored);
    if (size >= kShortestFile && size <= kLongestFile) found.push_back(at->path());
  }
  std::sort(found.begin(), found.end());
  const std::size_t stride = std::max<std::size_t>(1, found.size() / kFilesPerFolder);
  std::vector<fs::path> spread;
  for (std::size_t i = 0; i < found.size(); i += stride) spread.push_back(found[i]);
  return spread;
}

bool isInstalled(const std::string& program) {
  return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

class LzTools : public testing::Test {
 protected:
  void SetUp() override {
    if (!isInstalled("mscompress") || !isInstalled("msexpand")) {
      GTEST_SKIP() << "mscompress and msexpand are not installed";
    }
    for (const char* folder : kFolders) {
      for (const fs::path& path : filesOf(folder)) {
        files_.push_back({path, load(path, kMostOfAFile)});
      }
    }
    ASSERT_GT(files_.size(), 100U);
  }

  struct File {
    fs::path origin;
    Bytes bytes;
  };

  fs::path plainPath(std::size_t i) const { return folder_.path() / (std::to_string(i) + ".bin"); }
  fs::path packedPath(std::size_t i) const { return plainPath(i).string() + "_"; }

  // Runs a program on all that is in the temporary folder.
  bool run(const std::string& program) const {
    const std::string command = "cd '" + folder_.path().string() + "' && " + program + " *";
    return std::system((command + " >log 2>&1").c_str()) == 0;
  }

  test::TemporaryFolder folder_;
  std::vector<File> files_;
};

TEST_F(LzTools, WhatMscompressPackedExpandsToTheFileAndIsNoSmallerThanWhatIsPackedHere) {
  for (std::size_t i = 0; i < files_.size(); ++i) save(plainPath(i), files_[i].bytes);
  ASSERT_TRUE(run("mscompress"));
  std::size_t here = 0;
  std::size_t there = 0;
  for (std::size_t i = 0; i < files_.size(); ++i) {
    const auto length = static_cast<std::int32_t>(files_[i].bytes.size());
    const Bytes packed = load(packedPath(i));
    ASSERT_GE(packed.size(), 14U) << files_[i].origin;
    EXPECT_EQ(expandBySteps(packed), (Expanded{length, files_[i].bytes})) << files_[i].origin;
    here += compress(files_[i].bytes, 0).size();
    there += packed.size();
  }
  EXPECT_LE(here, there);
}

TEST_F(LzTools, MsexpandMakesTheFileOfWhatWasPackedHere) {
  for (std::size_t i = 0; i < files_.size(); ++i) save(packedPath(i), compress(files_[i].bytes, 0));
  ASSERT_TRUE(run("msexpand"));
  for (std::size_t i = 0; i < files_.size(); ++i) {
    EXPECT_TRUE(load(plainPath(i)) == files_[i].bytes) << files_[i].origin;
  }
}

}  // namespace
}  // namespace zev::lz
