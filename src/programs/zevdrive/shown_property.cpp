#include "programs/zevdrive/folder_tree.h"
#include "programs/zevdrive/program_windows.h"
#include "programs/zevdrive/window_hand.h"

namespace zev::drive {

using scenario::Json;

namespace {

/// A control as its window shows it.
struct ShownControl {
  const WindowHand& hand;
  const Form& form;
  const Control& control;
  HWND window;
};

using Property = std::optional<Json> (*)(const ShownControl& shown);

std::optional<Json> shownText(const ShownControl& shown) {
  const auto text = textOf(shown.window);
  return text ? std::optional<Json>(toUtf8(*text)) : std::nullopt;
}

std::optional<Json> caption(const ShownControl& shown) {
  return scenario::textPropertyOf(shown.control) == "Caption" ? shownText(shown) : std::nullopt;
}

std::optional<Json> text(const ShownControl& shown) {
  return scenario::textPropertyOf(shown.control) == "Text" ? shownText(shown) : std::nullopt;
}

std::optional<Json> enabled(const ShownControl& shown) {
  return IsWindowEnabled(shown.window) != FALSE;
}

std::optional<Json> visible(const ShownControl& shown) {
  return (GetWindowLongW(shown.window, GWL_STYLE) & WS_VISIBLE) != 0;
}

std::optional<Json> value(const ShownControl& shown) {
  const LRESULT check = SendMessageW(shown.window, BM_GETCHECK, 0, 0);
  if (shown.control.kind() == ControlKind::OptionButton) return check == BST_CHECKED;
  if (shown.control.kind() == ControlKind::CheckBox) return static_cast<int>(check);
  return std::nullopt;
}

std::optional<Json> listIndex(const ShownControl& shown) {
  if (shown.control.kind() != ControlKind::ComboBox) return std::nullopt;
  return shown.hand.chosen(shown.form, shown.control);
}

std::optional<Json> list(const ShownControl& shown) {
  if (shown.control.kind() != ControlKind::ComboBox) return std::nullopt;
  Json entries = Json::list();
  for (const Text& each : shown.hand.entries(shown.form, shown.control)) {
    entries.push_back(toUtf8(each));
  }
  return entries;
}

std::optional<Json> listCount(const ShownControl& shown) {
  const auto entries = list(shown);
  return entries ? std::optional<Json>(entries->size()) : std::nullopt;
}

std::optional<Json> drive(const ShownControl& shown) {
  if (shown.control.kind() != ControlKind::DriveListBox) return std::nullopt;
  const int place = shown.hand.chosen(shown.form, shown.control);
  if (place < 0) return Json("");
  const auto entries = shown.hand.entries(shown.form, shown.control);
  return toUtf8(left(entries.at(static_cast<std::size_t>(place)), 2));
}

std::optional<Json> path(const ShownControl& shown) {
  if (shown.control.kind() != ControlKind::DirListBox) return std::nullopt;
  return toUtf8(FolderTree(shown.hand.entries(shown.form, shown.control),
                           shown.hand.chosen(shown.form, shown.control))
                    .path());
}

template <std::int32_t scenario::SeenPlace::*Side>
std::optional<Json> side(const ShownControl& shown) {
  return placeOf(shown.window, false).*Side;
}

std::optional<Json> height(const ShownControl& shown) {
  if (shown.control.dropsDown()) return std::nullopt;
  return side<&scenario::SeenPlace::height>(shown);
}

struct PropertyRow {
  TextView name;
  Property read;
};

constexpr PropertyRow propertyRows[] = {
    {u"Caption", caption},
    {u"Text", text},
    {u"Enabled", enabled},
    {u"Visible", visible},
    {u"Value", value},
    {u"ListIndex", listIndex},
    {u"List", list},
    {u"ListCount", listCount},
    {u"Drive", drive},
    {u"Path", path},
    {u"Left", side<&scenario::SeenPlace::left>},
    {u"Top", side<&scenario::SeenPlace::top>},
    {u"Width", side<&scenario::SeenPlace::width>},
    {u"Height", height},
};

}  // namespace

std::optional<Json> shownProperty(const ProgramWindows& windows, const Form& form,
                                  const Control& control, std::string_view property) {
  const WindowHand hand(windows);
  const HWND window = windows.windowOf(form, control);
  if (window == nullptr) return std::nullopt;
  for (const PropertyRow& row : propertyRows) {
    if (equalText(row.name, fromUtf8(property))) return row.read({hand, form, control, window});
  }
  return std::nullopt;
}

}  // namespace zev::drive
