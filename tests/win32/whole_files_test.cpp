// Files that are replaced whole, and files of two names: what only several names or several
// processes show, on any Windows that the contracts run on.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "win32/ansi.h"
#include "win32/file_system.h"
#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

namespace fs = std::filesystem;

/// Names the file that this program is to be ended over, when it was started for that.
constexpr const wchar_t* endsOver = L"ZEV_ENDS_OVER";
constexpr UINT wasEnded = 77;

class WholeFiles : public testing::Test {
 protected:
  WholeFiles() { fs::create_directories(folder_); }
  ~WholeFiles() override {
    std::error_code refused;
    fs::remove_all(folder_, refused);
  }

  fs::path in(const char* name) const { return folder_ / name; }
  static Text text(const fs::path& path) { return fromAnsi(path.string()); }

  /// Makes it, or writes over it.
  void put(const fs::path& path, std::string_view bytes) {
    FileHandle file = 0;
    ASSERT_EQ(files_.CreateFileA(text(path), FileAccess::Write, FileShare::All,
                                 FileDisposition::CreateAlways, file),
              system_error::success);
    write(file, bytes);
    EXPECT_EQ(files_.CloseHandle(file), system_error::success);
  }

  /// Begins a file that is to take the place of what is there.
  FileHandle begin(const fs::path& path, std::string_view bytes) {
    FileHandle file = 0;
    EXPECT_EQ(files_.CreateFileA(text(path), FileAccess::Write, FileShare::All,
                                 FileDisposition::Replace, file),
              system_error::success);
    write(file, bytes);
    return file;
  }

  void replace(const fs::path& path, std::string_view bytes) {
    EXPECT_EQ(files_.CommitFile(begin(path, bytes)), system_error::success);
  }

  std::string contentOf(const fs::path& path) {
    FileHandle file = 0;
    EXPECT_EQ(files_.CreateFileA(text(path), FileAccess::Read, FileShare::All,
                                 FileDisposition::OpenExisting, file),
              system_error::success);
    std::string bytes(100, '\0');
    std::size_t read = 0;
    files_.ReadFile(file, 0, {reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()}, read);
    files_.CloseHandle(file);
    bytes.resize(read);
    return bytes;
  }

  static void addName(const fs::path& path, const fs::path& name) {
    ASSERT_TRUE(CreateHardLinkW(name.c_str(), path.c_str(), nullptr)) << GetLastError();
  }

  std::uint32_t heldAttributes(const fs::path& path) {
    std::uint32_t attributes = 0;
    FileHandle held = 0;
    EXPECT_EQ(files_.HoldEntryA(text(path), Holding::ToKeep, attributes, held),
              system_error::success);
    files_.CloseHandle(held);
    return attributes;
  }

 private:
  void write(FileHandle file, std::string_view bytes) {
    std::size_t written = 0;
    EXPECT_EQ(
        files_.WriteFile(
            file, 0, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}, written),
        system_error::success);
  }

  fs::path folder_ =
      fs::temp_directory_path() / ("ZevWhole" + std::to_string(GetCurrentProcessId()));
  Win32FileSystem files_;
};

/// Starts this program for one of its cases and waits for its end. Its exit status.
DWORD runOneCase(const std::wstring& name) {
  wchar_t program[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  std::wstring line = L'"' + std::wstring(program) + L"\" --gtest_filter=" + name;
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION made{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr,
                      nullptr, &start, &made)) {
    return GetLastError();
  }
  WaitForSingleObject(made.hProcess, INFINITE);
  DWORD status = 0;
  GetExitCodeProcess(made.hProcess, &status);
  CloseHandle(made.hThread);
  CloseHandle(made.hProcess);
  return status;
}

// Whoever has the old file still has all of it: none of its bytes was written over.
TEST_F(WholeFiles, TakeThePlaceOfTheOldOnesAndDoNotWriteOverThem) {
  put(in("value"), "what was there");
  addName(in("value"), in("another name"));
  replace(in("value"), "new");
  EXPECT_EQ(contentOf(in("value")), "new");
  EXPECT_EQ(contentOf(in("another name")), "what was there");
}

// This case is the one that is ended, too.
TEST_F(WholeFiles, OfAnEndedProgramLeaveWhatWasThere) {
  wchar_t path[MAX_PATH] = {};
  if (GetEnvironmentVariableW(endsOver, path, MAX_PATH) != 0) {
    begin(path, "half of what was to be writ");
    TerminateProcess(GetCurrentProcess(), wasEnded);
  }
  put(in("value"), "what was there");
  SetEnvironmentVariableW(endsOver, in("value").c_str());
  EXPECT_EQ(runOneCase(L"WholeFiles.OfAnEndedProgramLeaveWhatWasThere"), wasEnded);
  SetEnvironmentVariableW(endsOver, nullptr);
  EXPECT_EQ(contentOf(in("value")), "what was there");
  EXPECT_EQ(contentOf(in("value.~zev")), "half of what was to be writ");
  replace(in("value"), "new");
  EXPECT_EQ(contentOf(in("value")), "new");
  EXPECT_FALSE(fs::exists(in("value.~zev")));
}

// Somebody has given a file that is to stay the name under which the new one is written.
TEST_F(WholeFiles, WriteNothingIntoWhatHasTheirNameInTheMaking) {
  put(in("letter"), "dear");
  addName(in("letter"), in("value.~zev"));
  replace(in("value"), "new");
  EXPECT_EQ(contentOf(in("value")), "new");
  EXPECT_EQ(contentOf(in("letter")), "dear");
}

TEST_F(WholeFiles, OfTwoNamesCountAsLinks) {
  put(in("value"), "of one name");
  EXPECT_EQ(heldAttributes(in("value")), file_attribute::archive);
  addName(in("value"), in("another name"));
  for (const char* name : {"value", "another name"}) {
    EXPECT_EQ(heldAttributes(in(name)), file_attribute::archive | file_attribute::link);
  }
}

}  // namespace
}  // namespace zev::win32
