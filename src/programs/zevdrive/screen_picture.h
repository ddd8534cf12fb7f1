#pragma once

#include <cstdint>
#include <vector>

#include "win32/windows_api.h"

namespace zev::drive {

/// Colours from the left, line by line from the top, as 0xRRGGBB.
using Pixels = std::vector<std::uint32_t>;

/// A picture in memory that can be drawn on and read.
class Canvas {
 public:
  /// A black picture of that many pixels. It owns all that it is drawn with.
  Canvas(int width, int height);
  ~Canvas();
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  HDC context() const { return context_; }
  /// What was drawn until now.
  Pixels pixels() const;

 private:
  std::size_t size_;
  void* bits_ = nullptr;
  HDC context_ = nullptr;
  HBITMAP bitmap_ = nullptr;
  HGDIOBJ before_ = nullptr;
};

/// What a window shows within its frame, read from the screen as a whole: a window of another
/// program need not give its picture.
Pixels shownPixels(HWND window, int width, int height);

/// The same of a whole window, to look into.
class ScreenPicture {
 public:
  /// Takes the picture now, with whatever lies in front of the window.
  explicit ScreenPicture(HWND window);

  /// True if a part of it, as the screen counts, has one colour all over.
  bool plain(const RECT& part) const;

 private:
  POINT corner_{};
  LONG width_ = 0;
  LONG height_ = 0;
  Pixels pixels_;
};

}  // namespace zev::drive
