// Packages that were signed: the table of certificates behind the members moves none of them.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "scenarios/whole_run.h"
#include "support/made_image.h"

namespace zev {
namespace {

namespace fs = std::filesystem;
using test::Bytes;

constexpr TextView installer = u"C:\\Users\\bob\\Downloads\\ZEVSetup.exe";

/// A file of this process, gone with it.
class HostFile {
 public:
  HostFile() {
    std::string name = fs::temp_directory_path() / "zev-signed-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for the package");
    folder_ = name;
  }
  ~HostFile() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }
  HostFile(const HostFile&) = delete;
  HostFile& operator=(const HostFile&) = delete;

  fs::path path() const { return folder_ / "ZEVSetup.exe"; }
  void write(const Bytes& bytes) const {
    std::ofstream out(path(), std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
  }

 private:
  fs::path folder_;
};

WholeRun install(const std::string& machine, const fs::path& package) {
  return WholeRun(R"({"machine": )" + machine + R"(, "package": {"file": ")" + package.string() +
                  R"("}, "script": [)" + stepsToInstall + R"(, {"click": "Command2"}]})");
}

/// All that is on the machine but for the package itself.
std::string stateBehind(WholeRun& run) {
  run.machine().disks().remove(installer);
  return run.machine().state().dump();
}

/// The sample package, signed by a program that signs.
fs::path signedSample() {
  static const HostFile file;
  static const int status = std::system(
      (std::string(ZEV_SIGN) + " '" + ZEV_PACKAGE + "' '" + file.path().string() + "' >&2")
          .c_str());
  if (status != 0) throw std::runtime_error("the package could not be signed");
  return file.path();
}

TEST(SignedPackage, HasATableOfCertificatesBehindThePackage) {
  EXPECT_GT(fs::file_size(signedSample()), fs::file_size(ZEV_PACKAGE) + 1000);
}

TEST(SignedPackage, InstallsWhatThePackageInstalls) {
  for (const char* minor : {"0", "1", "2"}) {
    const std::string machine =
        R"({"version": {"platform": 2, "major": 6, "minor": )" + std::string(minor) + "}}";
    WholeRun plain = install(machine, ZEV_PACKAGE);
    WholeRun withTable = install(machine, signedSample());
    EXPECT_TRUE(withTable.events("box").empty()) << minor;
    EXPECT_EQ(withTable.ended(), "unload") << minor;
    EXPECT_EQ(withTable.events("process"), plain.events("process"));
    EXPECT_EQ(stateBehind(withTable), stateBehind(plain)) << minor;
  }
}

TEST(SignedPackage, InstallsBeforeVistaToo) {
  const std::string machine = R"({"version": {"platform": 2, "major": 5, "minor": 1}})";
  WholeRun plain = install(machine, ZEV_PACKAGE);
  WholeRun withTable = install(machine, signedSample());
  EXPECT_TRUE(withTable.events("box").empty());
  EXPECT_EQ(stateBehind(withTable), stateBehind(plain));
}

/// Whether a package of so many bytes in front of its table is told to be incomplete.
bool isRefused(std::size_t length) {
  const HostFile file;
  Bytes bytes = test::madeImage();
  bytes.resize(length);
  file.write(test::signedFile(std::move(bytes)));
  EXPECT_GE(fs::file_size(file.path()), 9'000'000u);
  WholeRun run = install("{}", file.path());
  const auto boxes = run.events("box");
  const std::string refusal = "Installation file is not complete. Please redownload the file from ";
  return !boxes.empty() && boxes[0]["text"].get<std::string>().starts_with(refusal);
}

TEST(SignedPackage, MustBeLongEnoughWithoutItsTable) {
  EXPECT_TRUE(isRefused(8'999'992));
  EXPECT_FALSE(isRefused(9'000'000));
}

}  // namespace
}  // namespace zev
