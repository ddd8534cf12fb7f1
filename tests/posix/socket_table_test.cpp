#include "posix/socket_table.h"

#include <gtest/gtest.h>

#include <set>

namespace zev::posix {
namespace {

TEST(SocketTableOfPosix, FindsWhatIsOpen) {
  SocketTable table;
  OpenSocket* const first = table.add({}, true);
  OpenSocket* const second = table.add({}, false);
  EXPECT_EQ(first->handle, 1);
  EXPECT_EQ(second->handle, 2);
  EXPECT_EQ(table.find(1), first);
  EXPECT_EQ(table.find(2), second);
  for (const std::int32_t unknown : {0, -1, 3, 0x10001, 0x10000, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
    EXPECT_EQ(table.find(unknown), nullptr) << unknown;
  }
  EXPECT_EQ(table.size(), 2u);
}

TEST(SocketTableOfPosix, GivesNoHandleTwice) {
  SocketTable table;
  std::set<std::int32_t> handles;
  for (int i = 0; i < 30'000; ++i) {
    OpenSocket* const socket = table.add({}, true);
    EXPECT_GT(socket->handle, 0);
    handles.insert(socket->handle);
    table.remove(*socket);
  }
  EXPECT_EQ(handles.size(), 30'000u);
  EXPECT_EQ(table.size(), 0u);
}

TEST(SocketTableOfPosix, StartsANewSocketAtNothing) {
  SocketTable table;
  OpenSocket* const old = table.add({}, false);
  old->mask = 59;
  old->failure = 10054;
  const std::int32_t handle = old->handle;
  table.remove(*old);
  const OpenSocket* const fresh = table.add({}, true);
  EXPECT_EQ(fresh, old);
  EXPECT_NE(fresh->handle, handle);
  EXPECT_EQ(table.find(handle), nullptr);
  EXPECT_EQ(fresh->mask, 0);
  EXPECT_EQ(fresh->failure, 0);
}

TEST(SocketTableOfPosix, EndsWhenItIsFull) {
  SocketTable table;
  for (int i = 0; i < 65'535; ++i) ASSERT_NE(table.add({}, true), nullptr);
  EXPECT_EQ(table.add({}, true), nullptr);
  table.remove(*table.find(300));
  EXPECT_NE(table.add({}, true), nullptr);
  table.removeAll();
  EXPECT_EQ(table.size(), 0u);
}

}  // namespace
}  // namespace zev::posix
