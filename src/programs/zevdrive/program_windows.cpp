#include "programs/zevdrive/program_windows.h"

#include <algorithm>
#include <array>
#include <memory>
#include <type_traits>

#include "programs/zevdrive/screen_picture.h"
#include "win32/control_windows.h"

namespace zev::drive {
namespace {

constexpr TextView boxClass = u"#32770";

/// Controls that keep their text themselves: only they can tell it.
bool keepsItsText(HWND window) {
  const Text name = classOf(window);
  return equalText(name, u"Edit") || equalText(name, u"ComboBox");
}

Text storedText(HWND window) {
  std::wstring buffer(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  const int length = InternalGetWindowText(window, buffer.data(), static_cast<int>(buffer.size()));
  return Text(buffer.begin(), buffer.begin() + std::max(length, 0));
}

std::optional<Text> askedText(HWND window) {
  const auto length = ask(window, WM_GETTEXTLENGTH);
  if (!length) return std::nullopt;
  std::wstring buffer(*length + 1, L'\0');
  const auto copied =
      ask(window, WM_GETTEXT, buffer.size(), reinterpret_cast<LPARAM>(buffer.data()));
  if (!copied) return std::nullopt;
  return Text(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(*copied));
}

constexpr int paintingLooks = 50;
constexpr DWORD paintingPause = 10;  // milliseconds

/// Whether there is anything to be seen of a control: a label without a text shows nothing, nor
/// does what only holds others.
bool hasLook(const Control& control, const scenario::SeenControl& shown) {
  switch (control.kind()) {
    case ControlKind::Label:
      return !trim(shown.text).empty();
    case ControlKind::Frame:
    case ControlKind::PictureBox:
      return control.design().border;
    default:
      return true;
  }
}

bool isVisible(HWND window) { return (GetWindowLongW(window, GWL_STYLE) & WS_VISIBLE) != 0; }

}  // namespace

/// Never waits for long: the program may be in the midst of a file, or have ended.
std::optional<DWORD_PTR> ask(HWND window, UINT message, WPARAM first, LPARAM second) {
  DWORD_PTR answer = 0;
  if (SendMessageTimeoutW(window, message, first, second, SMTO_NORMAL, patience, &answer) == 0) {
    return std::nullopt;
  }
  return answer;
}

Text classOf(HWND window) {
  std::array<wchar_t, 64> name{};
  const int length = GetClassNameW(window, name.data(), static_cast<int>(name.size()));
  return Text(name.begin(), name.begin() + length);
}

std::optional<Text> textOf(HWND window) {
  return keepsItsText(window) ? askedText(window) : storedText(window);
}

ProgramWindows::ProgramWindows(DWORD thread, std::vector<Form*> forms)
    : thread_(thread), forms_(std::move(forms)) {}

/// The system lists windows from the top down, which is the order that is kept.
void ProgramWindows::look() {
  order_.clear();
  box_ = nullptr;
  EnumThreadWindows(thread_, addWindow, reinterpret_cast<LPARAM>(this));
  for (auto& [form, window] : windows_) {
    if (std::find(order_.begin(), order_.end(), window.window) == order_.end()) window = {};
  }
}

BOOL CALLBACK ProgramWindows::addWindow(HWND window, LPARAM self) {
  reinterpret_cast<ProgramWindows*>(self)->add(window);
  return TRUE;
}

BOOL CALLBACK ProgramWindows::addControl(HWND window, LPARAM controls) {
  auto& all = *reinterpret_cast<std::map<int, HWND>*>(controls);
  all.emplace(GetDlgCtrlID(window), window);
  return TRUE;
}

/// The controls of a form that has been shown are known for good; before, the program may still be
/// making them.
void ProgramWindows::add(HWND window) {
  const Text name = classOf(window);
  if (name == boxClass && box_ == nullptr && IsWindowVisible(window)) box_ = window;
  for (const Form* form : forms_) {
    if (name != join(u"ZEV.", form->name())) continue;
    order_.push_back(window);
    FormWindow& known = windows_[form];
    if (known.window == window && known.whole) return;
    known = {window, {}, isVisible(window)};
    EnumChildWindows(window, addControl, reinterpret_cast<LPARAM>(&known.controls));
  }
}

HWND ProgramWindows::windowOf(const Form& form) const {
  const auto found = windows_.find(&form);
  return found == windows_.end() ? nullptr : found->second.window;
}

/// The binding numbers the windows of controls by their places on the form.
HWND ProgramWindows::windowOf(const Form& form, const Control& control) const {
  const auto found = windows_.find(&form);
  if (found == windows_.end()) return nullptr;
  const auto place = std::find(form.Controls().begin(), form.Controls().end(), &control);
  const auto window = found->second.controls.find(
      win32::firstControlId + static_cast<int>(place - form.Controls().begin()));
  return window == found->second.controls.end() ? nullptr : window->second;
}

Form* ProgramWindows::activeForm() const {
  Form* firstVisible = nullptr;
  for (const HWND window : order_) {
    const auto form = std::find_if(forms_.begin(), forms_.end(),
                                   [&](const Form* each) { return windowOf(*each) == window; });
    if (form == forms_.end() || !isVisible(window)) continue;
    if (IsWindowEnabled(window)) return *form;
    if (firstVisible == nullptr) firstVisible = *form;
  }
  return firstVisible;
}

bool ProgramWindows::paints() const {
  for (const auto& [form, known] : windows_) {
    if (known.window == nullptr || !isVisible(known.window)) continue;
    if (GetUpdateRect(known.window, nullptr, FALSE)) return true;
    for (const auto& [id, window] : known.controls) {
      if (IsWindowVisible(window) && GetUpdateRect(window, nullptr, FALSE)) return true;
    }
  }
  return false;
}

std::optional<scenario::Sight> ProgramWindows::sight() const {
  scenario::Sight sight;
  for (const Form* form : forms_) {
    auto seen = sightOf(*form);
    if (!seen) return std::nullopt;
    sight.push_back(std::move(*seen));
  }
  return sight;
}

/// One control that does not answer spoils the whole look: half of it would be of another moment.
std::optional<scenario::SeenForm> ProgramWindows::sightOf(const Form& form) const {
  scenario::SeenForm seen;
  seen.form = &form;
  const HWND window = windowOf(form);
  if (window == nullptr || !isVisible(window)) return seen;
  seen.visible = true;
  seen.caption = storedText(window);
  seen.enabled = IsWindowEnabled(window);
  for (std::size_t place = 0; place < form.Controls().size(); ++place) {
    const Control& control = *form.Controls()[place];
    if (!scenario::isSeen(control)) continue;
    const HWND own = windowOf(form, control);
    const bool hasText = !scenario::textPropertyOf(control).empty();
    const auto text = hasText ? textOf(own) : Text();
    if (!text) return std::nullopt;
    seen.controls[place] = {*text, IsWindowEnabled(own) != FALSE, isVisible(own)};
  }
  return seen;
}

scenario::Sight ProgramWindows::withPlaces(scenario::Sight sight) const {
  for (scenario::SeenForm& each : sight) {
    if (each.visible) addPlaces(each);
  }
  return sight;
}

/// A picture of a form tells something where nothing lies upon it.
void ProgramWindows::addPlaces(scenario::SeenForm& seen) const {
  const HWND window = windowOf(*seen.form);
  const SIZE inside = insideOf(window);
  seen.width = scenario::twipsOfPixels(static_cast<std::int32_t>(inside.cx));
  seen.height = scenario::twipsOfPixels(static_cast<std::int32_t>(inside.cy));
  const bool onTop = box_ == nullptr && activeForm() == seen.form;
  for (auto& [place, shown] : seen.controls) {
    const Control& control = *seen.form->Controls()[place];
    const HWND own = windowOf(*seen.form, control);
    shown.place = placeOf(own, control.dropsDown());
    if (!IsWindowVisible(own)) continue;
    shown.inSight = inSight(own, window, takesFocus(control.kind()));
  }
  if (onTop) lookForBlanks(seen);
}

/// What is painted comes to the screen in its time: what still shows nothing then is not in sight.
void ProgramWindows::lookForBlanks(scenario::SeenForm& seen) const {
  std::vector<std::size_t> blank;
  for (int each = 0; each < paintingLooks; ++each, Sleep(paintingPause)) {
    blank = blanksOf(seen);
    if (blank.empty()) return;
  }
  for (const std::size_t place : blank) seen.controls.at(place).inSight = false;
}

/// The controls that should show something and have one colour all over.
std::vector<std::size_t> ProgramWindows::blanksOf(const scenario::SeenForm& seen) const {
  const ScreenPicture picture(windowOf(*seen.form));
  std::vector<std::size_t> blank;
  for (const auto& [place, shown] : seen.controls) {
    const Control& control = *seen.form->Controls()[place];
    const HWND own = windowOf(*seen.form, control);
    if (!IsWindowVisible(own) || !hasLook(control, shown)) continue;
    RECT area{};
    GetWindowRect(own, &area);
    if (picture.plain(area)) blank.push_back(place);
  }
  return blank;
}

// ---- places

namespace {

struct RegionDeleter {
  void operator()(HRGN region) const { DeleteObject(region); }
};
using Region = std::unique_ptr<std::remove_pointer_t<HRGN>, RegionDeleter>;

Region regionOf(const RECT& area) { return Region(CreateRectRgnIndirect(&area)); }

RECT onScreen(HWND window) {
  RECT area{};
  GetWindowRect(window, &area);
  return area;
}

/// What lies within a window's frame, as the screen counts.
RECT insideOnScreen(HWND window) {
  RECT area{};
  GetClientRect(window, &area);
  MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&area), 2);
  return area;
}

bool within(const RECT& inner, const RECT& outer) {
  return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
         inner.bottom <= outer.bottom;
}

/// Whether the control lies within each container around it, up to the form: what sticks out is cut
/// off.
bool withinAllAround(HWND control, HWND form) {
  const RECT own = onScreen(control);
  for (HWND each = GetParent(control); each != nullptr; each = GetParent(each)) {
    if (!within(own, insideOnScreen(each))) return false;
    if (each == form) return true;
  }
  return true;
}

/// Takes away what the visible windows in front of this one, in the same container, lie upon.
void takeCovered(HRGN shown, HWND window) {
  for (HWND each = GetWindow(window, GW_HWNDPREV); each != nullptr;
       each = GetWindow(each, GW_HWNDPREV)) {
    if (!IsWindowVisible(each)) continue;
    CombineRgn(shown, shown, regionOf(onScreen(each)).get(), RGN_DIFF);
  }
}

}  // namespace

/// The system gives a list that drops down its height, so that it says nothing of the form.
scenario::SeenPlace placeOf(HWND control, bool dropsDown) {
  RECT area = onScreen(control);
  MapWindowPoints(nullptr, GetParent(control), reinterpret_cast<POINT*>(&area), 2);
  const auto twips = [](LONG pixels) {
    return scenario::twipsOfPixels(static_cast<std::int32_t>(pixels));
  };
  return {twips(area.left), twips(area.top), twips(area.right - area.left),
          dropsDown ? 0 : twips(area.bottom - area.top)};
}

SIZE insideOf(HWND window) {
  RECT area{};
  GetClientRect(window, &area);
  return {area.right, area.bottom};
}

bool inSight(HWND control, HWND form, bool takesFocus) {
  const RECT area = onScreen(control);
  if (area.right <= area.left || area.bottom <= area.top) return false;
  if (!withinAllAround(control, form)) return false;
  const Region whole = regionOf(area);
  const Region shown = regionOf(area);
  for (HWND each = control; each != form && each != nullptr; each = GetParent(each)) {
    takeCovered(shown.get(), each);
  }
  if (takesFocus) return EqualRgn(shown.get(), whole.get()) != FALSE;
  RECT left{};
  return GetRgnBox(shown.get(), &left) != NULLREGION;
}

POINT middleOf(HWND window) {
  const RECT area = onScreen(window);
  return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

}  // namespace zev::drive
