#include "sample/video.h"

#include <initializer_list>
#include <string_view>
#include <vector>

#include "sample/drawing.h"
#include "sample/fit.h"
#include "sample/noise.h"

namespace zev::sample {
namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 240;
constexpr std::uint32_t kFramesPerSecond = 10;
constexpr std::uint32_t kFrameBytes = kWidth * kHeight * 3;

/// Draws the frames one after another: a window is dragged over a desktop while a camera picture,
/// full of grain, runs in a corner.
class Recording {
 public:
  Recording() : noise_("SampleAVI"), desktop_(kWidth, kHeight) {
    desktop_.gradient({0, 0, kWidth, kHeight}, {70, 120, 180}, {30, 50, 80});
    desktop_.sensorNoise({0, 0, kWidth, kHeight}, 3, noise_);
    drawWindow(desktop_, {12, 12, 190, 150}, {30, 90, 160}, noise_);
    desktop_.gradient({0, kHeight - 16, kWidth, 16}, {70, 76, 90}, {30, 32, 40});
    drawWindow(window_, {0, 0, window_.width(), window_.height()}, {150, 70, 50}, noise_);
  }

  Bytes frame(int number) {
    Drawing picture = desktop_;
    const int left = 20 + number * 5 % 150;
    const int top = 60 + number * 3 % 70;
    picture.place(window_, left, top);
    drawCamera(picture, number);
    picture.mouseArrow(left + 60, top + 6);
    if (number % 10 < 5) picture.disc(14, kHeight - 8, 4, {230, 30, 30});
    return bottomUpRows(picture);
  }

 private:
  void drawCamera(Drawing& picture, int number) {
    const Area camera{kWidth - 148, 8, 140, 140};
    const int middle = camera.left + 70 + number % 7;
    picture.gradient(camera, {90, 80, 70}, {50, 44, 40});
    picture.disc(middle, camera.top + 62, 32, {214, 170, 140});
    picture.gradient({middle - 44, camera.top + 94, 88, 46}, {60, 70, 120}, {40, 50, 100});
    picture.sensorNoise(camera, 12, noise_);
    picture.frame(camera, {20, 20, 20});
  }

  Noise noise_;
  Drawing desktop_;
  Drawing window_{140, 96};
};

void appendNumbers(Bytes& out, std::initializer_list<std::uint32_t> numbers) {
  for (const std::uint32_t number : numbers) append(out, number);
}

/// A chunk of a RIFF file: four letters, length, contents, and a zero behind an odd length.
Bytes chunk(std::string_view letters, const Bytes& contents) {
  Bytes out;
  out.reserve(contents.size() + 9);
  append(out, letters);
  append(out, static_cast<std::uint32_t>(contents.size()));
  append(out, contents);
  if (contents.size() % 2 != 0) out.push_back(0);
  return out;
}

/// A chunk ("LIST" or "RIFF") of chunks, of the kind that the four letters `kind` tell.
Bytes list(std::string_view letters, std::string_view kind, const std::vector<Bytes>& chunks) {
  Bytes contents;
  append(contents, kind);
  for (const Bytes& part : chunks) append(contents, part);
  return chunk(letters, contents);
}

Bytes mainHeader(std::uint32_t frames) {
  constexpr std::uint32_t kHasIndex = 0x10;
  Bytes out;
  appendNumbers(out, {1000000 / kFramesPerSecond, kFrameBytes * kFramesPerSecond, 0, kHasIndex,
                      frames, 0, 1, kFrameBytes, kWidth, kHeight, 0, 0, 0, 0});
  return out;
}

Bytes streamHeader(std::uint32_t frames) {
  Bytes out;
  append(out, "vidsDIB ");
  // Flags, priority and language, initial frames, scale, rate, start, length, buffer, quality,
  // sample.
  appendNumbers(out, {0, 0, 0, 1, kFramesPerSecond, 0, frames, kFrameBytes, 0xffffffff, 0});
  for (const int side : {0, 0, kWidth, kHeight}) append(out, static_cast<std::uint16_t>(side));
  return out;
}

Bytes bitmapHeader() {
  constexpr std::uint32_t kPlanesAndBits = 24 << 16 | 1;
  Bytes out;
  appendNumbers(out, {40, kWidth, kHeight, kPlanesAndBits, 0, kFrameBytes, 0, 0, 0, 0});
  return out;
}

/// The place of each frame, counted from the letters "movi".
Bytes frameIndex(std::uint32_t frames) {
  constexpr std::uint32_t kKeyFrame = 0x10;
  Bytes out;
  for (std::uint32_t i = 0; i < frames; ++i) {
    append(out, "00db");
    appendNumbers(out, {kKeyFrame, 4 + i * (8 + kFrameBytes), kFrameBytes});
  }
  return out;
}

Bytes videoFile(const std::vector<Bytes>& frames) {
  const auto count = static_cast<std::uint32_t>(frames.size());
  const Bytes stream =
      list("LIST", "strl", {chunk("strh", streamHeader(count)), chunk("strf", bitmapHeader())});
  return list("RIFF", "AVI ",
              {list("LIST", "hdrl", {chunk("avih", mainHeader(count)), stream}),
               list("LIST", "movi", frames), chunk("idx1", frameIndex(count))});
}

}  // namespace

Bytes makeVideo(std::uint8_t nameByte, std::size_t packedSize) {
  constexpr std::size_t kHeadersAndIndex = 4096;  // more than the packed headers and index take
  Recording recording;
  std::vector<Bytes> frames;
  std::size_t used = kHeadersAndIndex;
  for (int number = 0;; ++number) {
    Bytes frame = chunk("00db", recording.frame(number));
    used += sample::packedSize(frame, nameByte);
    if (used > packedSize) return videoFile(frames);
    frames.push_back(std::move(frame));
  }
}

Bytes withJunkChunk(Bytes riff, const Bytes& junk) {
  append(riff, chunk("JUNK", junk));
  patch(riff, 4, static_cast<std::uint32_t>(riff.size() - 8));
  return riff;
}

}  // namespace zev::sample
