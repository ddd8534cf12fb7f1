#include "wizard/running_product.h"

#include <algorithm>

#include "runtime/error.h"

namespace zev {
namespace {

constexpr std::size_t titleSize = 128;

constexpr TextView mainTitles[] = {
    u"Tavorn's Screen Recorder",
    u"ZEV",
    u"ZEV Screen Recorder",
};
constexpr TextView translatedMainTitle = u"ZEV Screen Recorder";
constexpr TextView settingsTitle = u"Screen Recorder Settings";

bool isMainTitle(TextView title) {
  return std::find(std::begin(mainTitles), std::end(mainTitles), title) != std::end(mainTitles);
}

}  // namespace

bool RunningProduct::waitUntilClosed() {
  while (bothWindowsSeen()) {
    if (personGivesUp()) return false;
  }
  return true;
}

bool RunningProduct::bothWindowsSeen() {
  setStage_(25);
  mainSeen_ = settingsSeen_ = false;
  Windows& windows = program_.platform.windows;
  WindowHandle window = 0;
  ignoringErrors([&] {
    window = windows.GetWindow(program_.platform.application.engine().windowHandle(program_.form1),
                               GW_HWNDFIRST);
  });
  while (window != 0) {
    look(window);
    if (mainSeen_ && settingsSeen_) return true;
    setStage_(27);
    letEventsRun();
    WindowHandle next = 0;
    ignoringErrors([&] { next = windows.GetWindow(window, GW_HWNDNEXT); });
    window = next;
  }
  return false;
}

void RunningProduct::look(WindowHandle window) {
  setStage_(25);
  std::int32_t length = 0;
  ignoringErrors([&] { length = program_.platform.windows.GetWindowTextLengthA(window); });
  setStage_(26);
  if (length < 1) return;
  const Text title = titleOf(window, length);
  if (isMainTitle(title) || title == phrases_.Translate(translatedMainTitle)) mainSeen_ = true;
  if (title == settingsTitle || title == phrases_.Translate(settingsTitle)) settingsSeen_ = true;
  letEventsRun();
}

/// The buffer is not widened for a longer title.
Text RunningProduct::titleOf(WindowHandle window, std::int32_t length) {
  Text buffer = blanks(titleSize);
  ignoringErrors([&] { program_.platform.windows.GetWindowTextA(window, buffer, length + 1); });
  letEventsRun();
  return Text(trim(withoutTrailing(trim(buffer), u'\0')));
}

void RunningProduct::letEventsRun() {
  ignoringErrors([&] { program_.DoEvents(); });
}

/// Nobody can answer a box that is not shown, however often it is asked for.
bool RunningProduct::personGivesUp() {
  BoxAnswer answer = BoxAnswer::None;
  ignoringErrors([&] {
    answer = program_.platform.dialogs.MsgBox(
        join(phrases_.Translate(u"ZEV Screen Recorder is currently running, please close it before "
                                u"starting to install."),
             lineEnd, lineEnd, phrases_.Translate(u"Press on OK button to continue...")),
        box_style::okCancelDefaultCancel, phrases_.Translate(u"Screen Recorder"));
  });
  return answer != BoxAnswer::OK;
}

}  // namespace zev
