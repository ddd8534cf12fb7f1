#include <gmock/gmock.h>

#include "zevpack/made_package.h"
#include "zevpack/tool.h"

namespace zev::packing {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class ZevpackSample : public ToolTest {
 protected:
  void expectBuilt(const fs::path& folder, const fs::path& package) const {
    const Outcome outcome =
        zevpack({"build", "--image", at("image"), "--members", folder, "--output", package});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
  }
};

TEST_F(ZevpackSample, BecomesAPackageAndItsFilesAgain) {
  const Outcome made = zevpack({"sample", "--to", at("sample")});
  ASSERT_EQ(made.status, 0) << made.err;
  ASSERT_EQ(namesIn(at("sample")).size(), 56u);
  std::uintmax_t bytes = 0;
  for (const std::string& name : namesIn(at("sample"))) bytes += fs::file_size(at("sample") / name);
  EXPECT_THAT(made.out, HasSubstr(": 56 files, " + std::to_string(bytes) + " bytes\n"));

  writeFile(at("image"), madeImage());
  expectBuilt(at("sample"), at("package"));
  EXPECT_EQ(fs::file_size(at("package")), madeImage().size() + 15'246'584);
  const Outcome verified = zevpack({"verify", at("package")});
  EXPECT_EQ(verified.status, 0) << verified.out;

  ASSERT_EQ(zevpack({"extract", at("package"), "--to", at("plain")}).status, 0);
  EXPECT_EQ(namesIn(at("plain")), namesIn(at("sample")));
  for (const std::string& name : namesIn(at("sample"))) {
    EXPECT_TRUE(readFile(at("plain") / name) == readFile(at("sample") / name)) << name;
  }
  expectBuilt(at("plain"), at("again"));
  EXPECT_TRUE(readFile(at("again")) == readFile(at("package")));
}

}  // namespace
}  // namespace zev::packing
