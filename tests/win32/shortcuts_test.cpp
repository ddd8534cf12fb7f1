#include "win32/shell.h"

#include <gtest/gtest.h>

#include "runtime/error.h"
#include "win32/file_system.h"
#include "win32/windows_api.h"
// The shell's interfaces come behind the system's header.
#include <objbase.h>
#include <shlobj.h>

namespace zev::win32 {
namespace {

Text temporary(TextView name) {
  char folder[MAX_PATH] = {};
  GetTempPathA(MAX_PATH, folder);
  return join(fromUtf8(folder), name);
}

/// A saved shortcut, as the shell itself reads it.
class SavedShortcut {
 public:
  explicit SavedShortcut(const Text& path) {
    CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA,
                     reinterpret_cast<void**>(&link_));
    IPersistFile* file = nullptr;
    link_->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&file));
    loaded_ = file->Load(reinterpret_cast<const wchar_t*>(path.c_str()), STGM_READ) == S_OK;
    file->Release();
  }
  ~SavedShortcut() { link_->Release(); }
  SavedShortcut(const SavedShortcut&) = delete;
  SavedShortcut& operator=(const SavedShortcut&) = delete;

  bool loaded() const { return loaded_; }

  using Getter = HRESULT (STDMETHODCALLTYPE IShellLinkA::*)(LPSTR, int);
  std::string text(Getter getter) const {
    char text[MAX_PATH] = {};
    (link_->*getter)(text, MAX_PATH);
    return text;
  }
  std::string target() const {
    char path[MAX_PATH] = {};
    link_->GetPath(path, MAX_PATH, nullptr, SLGP_RAWPATH);
    return path;
  }
  std::string icon(int& index) const {
    char path[MAX_PATH] = {};
    link_->GetIconLocation(path, MAX_PATH, &index);
    return path;
  }
  int showCommand() const {
    int command = -1;
    link_->GetShowCmd(&command);
    return command;
  }

 private:
  IShellLinkA* link_ = nullptr;
  bool loaded_ = false;
};

TEST(Shortcuts, HoldEveryFieldThatWasGiven) {
  Win32Shortcuts shortcuts;
  const Text path = temporary(u"Fields.lnk");
  const auto shortcut = shortcuts.CreateObject()->CreateShortcut(path);
  shortcut->TargetPath(u"C:\\Product\\Recorder 6.exe");
  shortcut->Arguments(u" /filmworks");
  shortcut->WindowStyle(1);
  shortcut->IconLocation(u"C:\\Product\\Recorder 6.exe, 0");
  shortcut->Description(u"Film Works");
  shortcut->WorkingDirectory(u"C:\\Product");
  shortcut->Save();
  const SavedShortcut saved(path);
  ASSERT_TRUE(saved.loaded());
  EXPECT_EQ(saved.target(), "C:\\Product\\Recorder 6.exe");
  EXPECT_EQ(saved.text(&IShellLinkA::GetArguments), " /filmworks");
  EXPECT_EQ(saved.text(&IShellLinkA::GetDescription), "Film Works");
  EXPECT_EQ(saved.text(&IShellLinkA::GetWorkingDirectory), "C:\\Product");
  EXPECT_EQ(saved.showCommand(), SW_SHOWNORMAL);
  int index = -1;
  EXPECT_EQ(saved.icon(index), "C:\\Product\\Recorder 6.exe");
  EXPECT_EQ(index, 0);
  EXPECT_EQ(Win32FileSystem().DeleteFileA(path), 0u);
}

}  // namespace
}  // namespace zev::win32
