// What every binding has of the system's kernel.

#include <cstring>
#include <limits>

#include "socket/contract.h"

namespace zev::socket_bench {
namespace {

constexpr std::size_t tooMuch = std::numeric_limits<std::size_t>::max() - 0xFFFF;

using KernelContract = ContractTest;

// ---- pages

TEST_F(KernelContract, PagesAreZeroAndCanBeWritten) {
  constexpr std::size_t size = 5000;
  std::uint8_t* const pages = kernel().VirtualAlloc(size, commitPages, readWriteExecute);
  ASSERT_NE(pages, nullptr);
  EXPECT_EQ(std::count(pages, pages + size, 0), static_cast<std::ptrdiff_t>(size));
  std::memset(pages, 0x5A, size);
  EXPECT_EQ(std::count(pages, pages + size, 0x5A), static_cast<std::ptrdiff_t>(size));
  EXPECT_TRUE(kernel().VirtualFree(pages, 0, releasePages));
}

TEST_F(KernelContract, PagesCanBeExecutedOnlyWhereCodeIsEntered) {
  std::uint8_t* const pages = kernel().VirtualAlloc(182, commitPages, readWriteExecute);
  ASSERT_NE(pages, nullptr);
  EXPECT_EQ(bench().isExecutable(pages), windows().entersMachineCode());
  EXPECT_TRUE(kernel().VirtualFree(pages, 0, releasePages));
}

TEST_F(KernelContract, PagesBeginWhereAPageBegins) {
  std::uint8_t* const pages = kernel().VirtualAlloc(1, commitPages, readWriteExecute);
  ASSERT_NE(pages, nullptr);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pages) % 4096, 0u);
  EXPECT_TRUE(kernel().VirtualFree(pages, 0, releasePages));
}

TEST_F(KernelContract, PagesServeWhetherOrNotTheyAreLocked) {
  std::uint8_t* const pages = kernel().VirtualAlloc(182, commitPages, readWriteExecute);
  ASSERT_NE(pages, nullptr);
  kernel().VirtualLock(pages, 182);  // the system may refuse
  pages[181] = 7;
  EXPECT_EQ(pages[181], 7);
  EXPECT_TRUE(kernel().VirtualFree(pages, 0, releasePages));
}

TEST_F(KernelContract, PagesAreReleasedAsAWholeOnly) {
  std::uint8_t* const pages = kernel().VirtualAlloc(182, commitPages, readWriteExecute);
  ASSERT_NE(pages, nullptr);
  EXPECT_FALSE(kernel().VirtualFree(pages, 182, releasePages));
  EXPECT_TRUE(kernel().VirtualFree(pages, 0, releasePages));
}

TEST_F(KernelContract, TooManyPagesAreNull) {
  EXPECT_EQ(kernel().VirtualAlloc(tooMuch, commitPages, readWriteExecute), nullptr);
}

// ---- blocks

TEST_F(KernelContract, ABlockHasAnAddressThatStaysBehindItsUnlocking) {
  const GlobalHandle block = kernel().GlobalAlloc(0, 1024);
  ASSERT_NE(block, 0u);
  void* const address = kernel().GlobalLock(block);
  ASSERT_NE(address, nullptr);
  std::memset(address, 0x41, 1024);
  kernel().GlobalUnlock(block);
  const auto* const bytes = static_cast<const char*>(address);
  EXPECT_EQ(std::count(bytes, bytes + 1024, 0x41), 1024);
  EXPECT_EQ(kernel().GlobalLock(block), address);
  kernel().GlobalUnlock(block);
  EXPECT_EQ(kernel().GlobalFree(block), 0u);
}

TEST_F(KernelContract, BlocksAreApart) {
  const GlobalHandle one = kernel().GlobalAlloc(0, 16);
  const GlobalHandle other = kernel().GlobalAlloc(0, 16);
  ASSERT_NE(one, 0u);
  ASSERT_NE(other, 0u);
  std::memset(kernel().GlobalLock(one), 1, 16);
  std::memset(kernel().GlobalLock(other), 2, 16);
  EXPECT_EQ(*static_cast<char*>(kernel().GlobalLock(one)), 1);
  kernel().GlobalFree(one);
  kernel().GlobalFree(other);
}

TEST_F(KernelContract, TheBlockZeroIsNone) {
  EXPECT_EQ(kernel().GlobalFree(0), 0u);
  EXPECT_EQ(kernel().GlobalLock(0), nullptr);
}

TEST_F(KernelContract, TooLargeABlockIsZero) { EXPECT_EQ(kernel().GlobalAlloc(0, tooMuch), 0u); }

// ---- functions

TEST_F(KernelContract, AFunctionThatNobodyHasIsZero) {
  EXPECT_EQ(kernel().ProcAddress("no_such_library", "SetWindowLongA"), 0u);
  EXPECT_EQ(kernel().ProcAddress("user32", "NoSuchFunction"), 0u);
  EXPECT_EQ(kernel().ProcAddress("vba6", "EbMode"), 0u);
}

TEST_F(KernelContract, AFunctionOfALoadedLibraryHasAnEntry) {
  if (bench().name() == "posix" && !windows().entersMachineCode()) {
    GTEST_SKIP() << "no code that a process of this width could enter";
  }
  EXPECT_NE(kernel().ProcAddress("user32", "SetWindowLongA"), 0u);
  EXPECT_NE(kernel().ProcAddress("user32", "CallWindowProcA"), 0u);
}

// ---- the code page

TEST_F(KernelContract, PlainTextIsTheSameInTheCodePage) {
  EXPECT_EQ(kernel().toAnsi(u"Az 09~"), "Az 09~");
  EXPECT_EQ(kernel().fromAnsi("Az 09~"), u"Az 09~");
  EXPECT_EQ(kernel().toAnsi(u""), "");
  EXPECT_EQ(kernel().fromAnsi(""), u"");
}

TEST_F(KernelContract, ANulIsACharacterAsAnyOther) {
  EXPECT_EQ(kernel().toAnsi(TextView(u"a\0b", 3)), std::string("a\0b", 3));
  EXPECT_EQ(kernel().fromAnsi(std::string_view("a\0b", 3)), Text(u"a\0b", 3));
}

TEST_F(KernelContract, EveryByteComesBack) {
  std::string bytes;
  for (int each = 0; each < 256; ++each) bytes += static_cast<char>(each);
  const Text text = kernel().fromAnsi(bytes);
  EXPECT_EQ(text.size(), bytes.size());
  EXPECT_EQ(kernel().toAnsi(text), bytes);
}

TEST_F(KernelContract, WhatThePageCannotRepresentBecomesItsDefaultCharacter) {
  EXPECT_EQ(kernel().toAnsi(u"a\u4E2Db"), "a?b");
}

}  // namespace
}  // namespace zev::socket_bench
