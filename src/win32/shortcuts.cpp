#include "win32/shortcuts.h"

#include "win32/writable_path.h"

namespace zev::win32 {
namespace {

/// True if an icon's location ends in the place of the icon within its file, ", 0".
bool namesPlace(TextView location) {
  const std::size_t comma = location.rfind(u',');
  return comma != TextView::npos &&
         location.find_first_not_of(u" -0123456789", comma + 1) == TextView::npos;
}

class Win32Shortcut final : public Shortcut {
 public:
  explicit Win32Shortcut(AutomationObject object) : object_(std::move(object)) {}

  void TargetPath(TextView path) override { object_.put(u"TargetPath", Text(path)); }
  void Arguments(TextView arguments) override { object_.put(u"Arguments", Text(arguments)); }
  void WindowStyle(std::int32_t style) override { object_.put(u"WindowStyle", style); }
  /// A shortcut's file always holds the place of the icon, and some systems do not take a location
  /// without it.
  void IconLocation(TextView location) override {
    object_.put(u"IconLocation", namesPlace(location) ? Text(location) : join(location, u",0"));
  }
  void Description(TextView text) override { object_.put(u"Description", Text(text)); }
  void WorkingDirectory(TextView path) override { object_.put(u"WorkingDirectory", Text(path)); }
  void Save() override { object_.call(u"Save"); }

 private:
  AutomationObject object_;
};

class Win32WScriptShell final : public WScriptShell {
 public:
  std::unique_ptr<Shortcut> CreateShortcut(TextView path) override {
    return std::make_unique<Win32Shortcut>(object_.object(u"CreateShortcut", {Text(path)}));
  }

  Text SpecialFolders(TextView name) override {
    return writablePath(object_.object(u"SpecialFolders").item(Text(name)));
  }

 private:
  AutomationObject object_ = AutomationObject::create(u"WScript.Shell");
};

}  // namespace

std::unique_ptr<WScriptShell> Win32Shortcuts::CreateObject() {
  if (!thread_) thread_.emplace();
  return std::make_unique<Win32WScriptShell>();
}

}  // namespace zev::win32
