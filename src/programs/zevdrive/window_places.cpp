#include "programs/zevdrive/window_places.h"

#include <memory>
#include <type_traits>

namespace zev::drive {
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
