#include "socket/scripted_network.h"
#include "socket/socket_control.h"
#include "support/table.h"

// The control's descriptions and stored properties against their tables.
namespace zev::socket_bench {
namespace {

using ControlTablesTest = ScriptedTest;

const char* nameOf(MemberDescription::Kind kind) {
  switch (kind) {
    case MemberDescription::Kind::ReadWrite:
      return "read_write";
    case MemberDescription::Kind::Read:
      return "read";
    case MemberDescription::Kind::Operation:
      return "operation";
    case MemberDescription::Kind::Event:
      return "event";
  }
  return "";
}

TEST_F(ControlTablesTest, MembersAreDescribedAsInTheTable) {
  const test::Table table = test::Table::read("socket/control_members.tsv");
  const auto members = socketMembers();
  ASSERT_EQ(members.size(), table.size());
  for (const test::Row& row : table) {
    const MemberDescription& member = members[static_cast<std::size_t>(row.number("order") - 1)];
    EXPECT_EQ(toUtf8(member.name), row.word("member"));
    EXPECT_EQ(nameOf(member.kind), row.word("kind"));
    EXPECT_EQ(member.description, row.text("description"));
  }
}

TEST_F(ControlTablesTest, EventsAreDescribedAsInTheTable) {
  const test::Table table = test::Table::read("socket/control_events.tsv");
  const auto members = socketEventMembers();
  ASSERT_EQ(members.size(), table.size());
  for (const test::Row& row : table) {
    const MemberDescription& member = members[static_cast<std::size_t>(row.number("order") - 1)];
    EXPECT_EQ(toUtf8(member.name), row.word("event"));
    EXPECT_EQ(member.kind, MemberDescription::Kind::Event);
    EXPECT_EQ(member.description, row.isNone("description") ? u"" : row.text("description"));
  }
}

TEST_F(ControlTablesTest, OtherValuesAreStoredInTheOrderOfTheTableAndComeBack) {
  Socket control(module);
  control.Tag(u"mine");
  control.RemotePort(80);
  control.RemoteHost(u"host.example");
  control.Protocol(ProtocolUDP);
  control.LocalPort(4711);
  PropertyBag bag;
  control.UserControl_WriteProperties(bag);
  const test::Table table = test::Table::read("socket/control_properties.tsv");
  ASSERT_EQ(bag.contents().size(), table.size());
  for (std::size_t index = 0; index < table.size(); ++index) {
    const test::Row& row = table.rows()[index];
    EXPECT_EQ(static_cast<std::size_t>(row.number("order")), index + 1);
    EXPECT_EQ(toUtf8(bag.contents()[index].first), row.word("key"));
    EXPECT_EQ(bag.contents()[index].second.type(),
              row.is("type", "text") ? VariantType::String : VariantType::Long);
  }
  Socket copy(module);
  copy.UserControl_ReadProperties(bag);
  EXPECT_EQ(copy.LocalPort(), 4711);
  EXPECT_EQ(copy.Protocol(), ProtocolUDP);
  EXPECT_EQ(copy.RemoteHost(), u"host.example");
  EXPECT_EQ(copy.RemotePort(), 80);
  EXPECT_EQ(copy.Tag(), u"mine");
}

}  // namespace
}  // namespace zev::socket_bench
