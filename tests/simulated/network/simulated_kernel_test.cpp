#include "simulated/network/simulated_kernel.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace zev::simulated {
namespace {

TEST(SimulatedKernel, CountsPagesAndBlocks) {
  SimulatedKernel kernel;
  std::uint8_t* const pages = kernel.VirtualAlloc(4097, commitPages, readWriteExecute);
  const GlobalHandle block = kernel.GlobalAlloc(0, 1024);
  EXPECT_EQ(kernel.pages(), 2u);
  EXPECT_EQ(kernel.blocks(), 1u);
  EXPECT_TRUE(kernel.VirtualFree(pages, 0, releasePages));
  EXPECT_EQ(kernel.GlobalFree(block), 0u);
  EXPECT_EQ(kernel.pages(), 0u);
  EXPECT_EQ(kernel.blocks(), 0u);
}

TEST(SimulatedKernel, FreesNothingTwice) {
  SimulatedKernel kernel;
  std::uint8_t* const pages = kernel.VirtualAlloc(1, commitPages, readWriteExecute);
  const GlobalHandle block = kernel.GlobalAlloc(0, 1);
  EXPECT_TRUE(kernel.VirtualFree(pages, 0, releasePages));
  EXPECT_FALSE(kernel.VirtualFree(pages, 0, releasePages));
  EXPECT_EQ(kernel.GlobalFree(block), 0u);
  EXPECT_EQ(kernel.GlobalFree(block), block);
  EXPECT_EQ(kernel.GlobalLock(block), nullptr);
}

TEST(SimulatedKernel, LocksWhatIsThere) {
  SimulatedKernel kernel;
  std::uint8_t* const pages = kernel.VirtualAlloc(182, commitPages, readWriteExecute);
  EXPECT_TRUE(kernel.VirtualLock(pages, 182));
  EXPECT_FALSE(kernel.VirtualLock(pages, 4097));
  EXPECT_FALSE(kernel.VirtualLock(nullptr, 1));
}

TEST(SimulatedKernel, HasTwoFunctionsAndThoseThatAreSet) {
  SimulatedKernel kernel;
  for (const char* name : {"SetWindowLongA", "CallWindowProcA"}) {
    const std::uintptr_t address = kernel.ProcAddress("user32", name);
    EXPECT_NE(address, 0u);
    EXPECT_LE(address, 0xFFFFFFFFu);
  }
  EXPECT_EQ(kernel.ProcAddress("vba6", "EbMode"), 0u);
  kernel.setProcAddress("vba6", "EbMode", 0x1234);
  EXPECT_EQ(kernel.ProcAddress("vba6", "EbMode"), 0x1234u);
  kernel.setProcAddress("user32", "SetWindowLongA", 0);
  EXPECT_EQ(kernel.ProcAddress("user32", "SetWindowLongA"), 0u);
}

TEST(SimulatedKernel, HasACodePage) {
  SimulatedKernel kernel;
  EXPECT_EQ(kernel.toAnsi(u"\u20AC"), "\x80");
  kernel.setCodePage(1251);
  EXPECT_EQ(kernel.toAnsi(u"\u0416"), "\xC6");
  EXPECT_EQ(kernel.fromAnsi("\xC6"), u"\u0416");
  EXPECT_THROW(kernel.setCodePage(7), std::invalid_argument);
}

}  // namespace
}  // namespace zev::simulated
