#include "win32/processes.h"

#include <gtest/gtest.h>

#include "runtime/error.h"
#include "win32/file_system.h"
#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

std::int32_t shellError(TextView commandLine) {
  Win32Processes processes;
  try {
    processes.Shell(commandLine, 1);
    return 0;
  } catch (const RuntimeError& error) {
    return error.number();
  }
}

TEST(Processes, WaitForAProgramThatRuns) {
  Win32Processes processes;
  const std::int32_t started = processes.Shell(u"cmd.exe /c \"ping -n 2 127.0.0.1 > nul\"", 0);
  const ProcessHandle handle = processes.OpenProcess(SYNCHRONIZE, false, started);
  ASSERT_NE(handle, 0u);
  EXPECT_EQ(processes.WaitForSingleObject(handle, INFINITE), 0u);
  processes.CloseHandle(handle);
}

TEST(Processes, TellAProgramThatIsNotThereFromOneThatCannotStart) {
  EXPECT_EQ(shellError(u"no-such-program.exe"), 53);
  EXPECT_EQ(shellError(u"C:\\no-such-folder\\program.exe"), 53);
  Win32FileSystem files;
  FileHandle file = 0;
  const Text path = u"C:\\zev-no-image.exe";
  ASSERT_EQ(files.CreateFileA(path, FileAccess::Write, FileShare::All,
                              FileDisposition::CreateAlways, file),
            0u);
  const std::string bytes(100, 'x');
  std::size_t written = 0;
  files.WriteFile(file, 0, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()},
                  written);
  files.CloseHandle(file);
  EXPECT_EQ(shellError(path), 5);
  EXPECT_EQ(files.DeleteFileA(path), 0u);
}

TEST(Processes, KnowTheirOwnFile) {
  Win32Processes processes;
  char path[MAX_PATH] = {};
  GetModuleFileNameA(nullptr, path, MAX_PATH);
  EXPECT_EQ(toUtf8(join(processes.ownFolder(), u"\\", processes.ownName(), u".exe")), path);
}

}  // namespace
}  // namespace zev::win32
