#include "win32/automation.h"

#include <gtest/gtest.h>

#include "runtime/error.h"

namespace zev::win32 {
namespace {

/// The error that a statement raises; its number is 0 if it raises none.
template <typename Statement>
RuntimeError raisedBy(Statement statement) {
  try {
    statement();
  } catch (const RuntimeError& error) {
    return error;
  }
  return RuntimeError(0);
}

class Automation : public testing::Test {
 protected:
  AutomationThread thread_;
};

TEST_F(Automation, CannotCreateAClassThatIsNotThere) {
  const RuntimeError error = raisedBy([] { AutomationObject::create(u"No.Such.Class"); });
  EXPECT_EQ(error.number(), 429);
  EXPECT_EQ(error.description(), u"ActiveX component can't create object");
}

TEST_F(Automation, RefusesAMemberThatAnObjectDoesNotHave) {
  AutomationObject shell = AutomationObject::create(u"WScript.Shell");
  EXPECT_EQ(raisedBy([&] { shell.call(u"NoSuchMethod"); }).number(), 438);
  EXPECT_EQ(raisedBy([&] { shell.put(u"NoSuchProperty", 1); }).number(), 438);
}

TEST_F(Automation, FindsMembersWithoutRegardToCase) {
  AutomationObject shell = AutomationObject::create(u"wscript.shell");
  EXPECT_FALSE(shell.object(u"SPECIALFOLDERS").item(u"Desktop").empty());
}

TEST_F(Automation, NoObjectIsAnErrorAtItsUse) {
  AutomationObject none(nullptr);
  EXPECT_EQ(raisedBy([&] { none.call(u"Save"); }).number(), 91);
  EXPECT_EQ(raisedBy([&] { none.item(1); }).number(), 91);
}

}  // namespace
}  // namespace zev::win32
