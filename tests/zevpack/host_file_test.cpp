#include "programs/zevpack/host_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "zevpack/made_package.h"
#include "zevpack/tool.h"

namespace zev::packing {
namespace {

using Names = std::set<std::string>;

class NewFileTest : public ToolTest {
 protected:
  Names names() const { return namesIn(at("")); }
};

TEST_F(NewFileTest, TakesItsNameWhenItIsKept) {
  NewFile file(at("out"));
  file.append(Bytes{1, 2});
  file.append(Bytes{3});
  EXPECT_EQ(names(), (Names{"out.partial"}));
  file.keep();
  EXPECT_EQ(names(), (Names{"out"}));
  EXPECT_EQ(readFile(at("out")), (Bytes{1, 2, 3}));
}

TEST_F(NewFileTest, LeavesNothingIfItIsNotKept) {
  { NewFile(at("out")).append(noise(100000, 1)); }
  EXPECT_EQ(names(), Names{});
}

TEST_F(NewFileTest, LeavesWhatWasThereIfItIsNotKept) {
  writeFile(at("out"), Bytes{1});
  { NewFile(at("out")).append(noise(100000, 1)); }
  EXPECT_EQ(names(), (Names{"out"}));
  EXPECT_EQ(readFile(at("out")), Bytes{1});
}

TEST_F(NewFileTest, ReplacesWhatWasThereIfItIsKept) {
  writeFile(at("out"), noise(1000, 1));
  writeFile(at("out"), Bytes{2});
  EXPECT_EQ(readFile(at("out")), Bytes{2});
}

TEST_F(NewFileTest, RefusesAFolderThatIsMissing) {
  EXPECT_THROW(NewFile(at("missing") / "out"), ToolError);
}

TEST_F(NewFileTest, RefusesAFolderInItsPlaceAndLeavesNothing) {
  makeFolder(at("out"));
  EXPECT_THROW(writeFile(at("out"), Bytes{1}), ToolError);
  EXPECT_EQ(names(), (Names{"out"}));
}

TEST_F(NewFileTest, MakeFolderMakesItsParentsAndTakesOneThatIsThere) {
  makeFolder(at("a") / "b" / "c");
  EXPECT_NO_THROW(makeFolder(at("a") / "b" / "c"));
  EXPECT_TRUE(std::filesystem::is_directory(at("a") / "b" / "c"));
}

}  // namespace
}  // namespace zev::packing
