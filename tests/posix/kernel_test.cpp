#include "posix/kernel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "posix/code_queue.h"

namespace zev::posix {
namespace {

constexpr std::uint32_t readWrite = 4;

class KernelOfPosix : public testing::Test {
 protected:
  PosixKernel kernel{1252};
};

TEST_F(KernelOfPosix, GivesPagesThatAreZeroAndTakesThemBack) {
  std::uint8_t* const pages = kernel.VirtualAlloc(5000, commitPages, readWriteExecute);
  ASSERT_NE(pages, nullptr);
  EXPECT_TRUE(std::all_of(pages, pages + 5000, [](std::uint8_t each) { return each == 0; }));
  std::memset(pages, 0x90, 5000);
  EXPECT_TRUE(kernel.VirtualLock(pages, 182));
  EXPECT_FALSE(kernel.VirtualFree(pages, 5000, releasePages));  // the size has to be 0
  EXPECT_FALSE(kernel.VirtualFree(pages, 0, 0x4000));
  EXPECT_FALSE(kernel.VirtualFree(pages + 4096, 0, releasePages));
  EXPECT_TRUE(kernel.VirtualFree(pages, 0, releasePages));
  EXPECT_FALSE(kernel.VirtualFree(pages, 0, releasePages));
}

TEST_F(KernelOfPosix, RefusesPagesThatCannotBe) {
  EXPECT_EQ(kernel.VirtualAlloc(0, commitPages, readWrite), nullptr);
  EXPECT_EQ(kernel.VirtualAlloc(100, 0, readWrite), nullptr);
  EXPECT_EQ(kernel.VirtualAlloc(static_cast<std::size_t>(-1) - 8191, commitPages, readWrite),
            nullptr);
}

TEST_F(KernelOfPosix, KeepsBlocksAtTheirAddressUntilTheyAreFreed) {
  const GlobalHandle block = kernel.GlobalAlloc(0, 1024);
  ASSERT_NE(block, 0u);
  void* const address = kernel.GlobalLock(block);
  ASSERT_NE(address, nullptr);
  std::memset(address, 7, 1024);
  EXPECT_TRUE(kernel.GlobalUnlock(block));
  EXPECT_EQ(kernel.GlobalLock(block), address);
  EXPECT_EQ(kernel.GlobalFree(0), 0u);
  EXPECT_EQ(kernel.GlobalLock(block), address);
  EXPECT_EQ(kernel.GlobalFree(block), 0u);
  EXPECT_EQ(kernel.GlobalLock(block), nullptr);
  EXPECT_FALSE(kernel.GlobalUnlock(block));
  EXPECT_EQ(kernel.GlobalFree(block), block);
}

TEST_F(KernelOfPosix, RefusesABlockThatCannotBe) {
  EXPECT_EQ(kernel.GlobalAlloc(0, 0x80000000), 0u);
  EXPECT_EQ(kernel.GlobalAlloc(0, static_cast<std::size_t>(-1)), 0u);
}

TEST_F(KernelOfPosix, GivesEachBlockItsOwnHandle) {
  const GlobalHandle first = kernel.GlobalAlloc(0, 16);
  EXPECT_NE(kernel.GlobalAlloc(0, 16), first);  // left behind: a leak check would tell
}

TEST_F(KernelOfPosix, TiesOneCharacterToOneByte) {
  std::string all;
  for (int i = 0; i < 256; ++i) all.push_back(static_cast<char>(i));
  EXPECT_EQ(kernel.fromAnsi(all).size(), 256u);
  EXPECT_EQ(kernel.toAnsi(kernel.fromAnsi(all)), all);
  EXPECT_EQ(kernel.toAnsi(u"\u20AC"), "\x80");
  EXPECT_EQ(kernel.toAnsi(u"\u0416"), "?");
  EXPECT_EQ(PosixKernel(1251).toAnsi(u"\u0416"), "\xC6");
}

TEST_F(KernelOfPosix, KnowsFunctionsWhereMachineCodeCanCallThem) {
  for (const char* function : {"SetWindowLongA", "CallWindowProcA"}) {
    EXPECT_EQ(kernel.ProcAddress("user32", function) != 0, entersCode) << function;
    EXPECT_EQ(kernel.ProcAddress("kernel32", function), 0u) << function;
  }
  EXPECT_EQ(kernel.ProcAddress("user32", "MessageBoxA"), 0u);
  EXPECT_EQ(kernel.ProcAddress("vba6", "EbMode"), 0u);
}

#if defined(__i386__)

std::uint32_t enteredWith[4];

__attribute__((stdcall, force_align_arg_pointer)) std::int32_t ownProcedure(std::uint32_t window,
                                                                            std::uint32_t message,
                                                                            std::uint32_t wParam,
                                                                            std::uint32_t lParam) {
  const std::uint32_t all[] = {window, message, wParam, lParam};
  std::copy(std::begin(all), std::end(all), enteredWith);
  return -5;
}

TEST(CodeOnPosix, IsEnteredWithItsFourArguments) {
  CodeQueue queue;
  EXPECT_TRUE(queue.entersMachineCode());
  const WindowHandle window = queue.CreateWindowExA(u"STATIC", u"");
  queue.SetWindowLongA(window, windowProcedureIndex,
                       reinterpret_cast<std::uintptr_t>(&ownProcedure));
  EXPECT_EQ(queue.send({window, 2049, 0x80000001, 0x12340010}), -5);
  EXPECT_EQ(enteredWith[0], window);
  EXPECT_EQ(enteredWith[1], 2049u);
  EXPECT_EQ(enteredWith[2], 0x80000001u);
  EXPECT_EQ(enteredWith[3], 0x12340010u);
}

TEST_F(KernelOfPosix, RunsCodeFromItsPagesThatCallsTheSystem) {
  // mov eax, CallWindowProcA; push lParam, wParam, message, window, procedure; call eax; ret 16
  const std::uint32_t target = kernel.ProcAddress("user32", "CallWindowProcA");
  const std::uint32_t inner = reinterpret_cast<std::uintptr_t>(&ownProcedure);
  std::string code = "\xB8";
  const auto number = [&](std::uint32_t value) {
    code.append(reinterpret_cast<const char*>(&value), sizeof value);
  };
  number(target);
  for (int i = 0; i < 4; ++i) code += "\xFF\x74\x24\x10";  // push dword [esp + 16]
  code += "\x68";
  number(inner);
  code += std::string("\xFF\xD0\xC2\x10\x00", 5);
  std::uint8_t* const pages = kernel.VirtualAlloc(code.size(), commitPages, readWriteExecute);
  std::memcpy(pages, code.data(), code.size());
  CodeQueue queue;
  const WindowHandle window = queue.CreateWindowExA(u"STATIC", u"");
  queue.SetWindowLongA(window, windowProcedureIndex, reinterpret_cast<std::uintptr_t>(pages));
  EXPECT_EQ(queue.send({window, 15, 3, 4}), -5);
  EXPECT_EQ(enteredWith[0], window);
  EXPECT_EQ(enteredWith[3], 4u);
}

#else

TEST(CodeOnPosix, IsNotEntered) { EXPECT_FALSE(WindowQueue().entersMachineCode()); }

#endif

}  // namespace
}  // namespace zev::posix
