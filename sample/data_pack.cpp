#include "sample/data_pack.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <string>

#include "sample/drawing.h"
#include "sample/fit.h"
#include "sample/languages.h"
#include "sample/noise.h"
#include "sample/sounds.h"

namespace zev::sample {
namespace {

constexpr std::size_t kNameLength = 16;
constexpr std::size_t kSmallestEntry = 1024;
constexpr std::size_t kLargestEntry = 96 * 1024;
constexpr std::size_t kEntriesAtLeast = 8;  // how finely a small pack is divided

/// What an entry is made from: its number in the pack, its rough length and the pack's noise.
struct EntryOrder {
  std::size_t number;
  std::size_t length;
  Noise& noise;
};

int sideFor(std::size_t bytes) {
  return std::max(24, static_cast<int>(std::sqrt(static_cast<double>(bytes) / 3)) & ~3);
}

/// The parts of a window, above them the brushed metal of its frame.
Bytes makeSkin(const EntryOrder& order) {
  const int side = sideFor(order.length);
  const int metal = side * 2 / 5;
  Drawing skin(side, side);
  const Colour theme{order.noise.byte(), 90, order.noise.byte()};
  skin.gradient({0, 0, side, metal}, {220, 226, 236}, blend(theme, {255, 255, 255}, 1, 2));
  skin.sensorNoise({0, 0, side, metal}, 5, order.noise);
  drawWindow(skin, {0, metal, side, side - metal}, theme, order.noise);
  return toBitmap(skin);
}

Bytes makeMessages(const EntryOrder& order) {
  static constexpr std::array kLanguages = {Language::kGerman, Language::kFrench,
                                            Language::kSpanish};
  const Language language = kLanguages[order.noise.below(kLanguages.size())];
  const std::vector<std::string> sections = languageSections(language);
  Bytes out;
  for (std::size_t i = order.noise.below(400); out.size() < order.length; ++i) {
    append(out, std::string_view(sections[i % sections.size()]));
  }
  return out;
}

/// A curve from 0 to 1 as 32-bit floating-point values, slow at both ends.
Bytes makeCurve(const EntryOrder& order) {
  const std::size_t steps = order.length / 16;
  const double sharpness = 1.5 + 0.01 * order.noise.below(300);
  Bytes out;
  for (std::size_t i = 0; i < steps; ++i) {
    const double t = static_cast<double>(i) / static_cast<double>(steps);
    const double rise = std::pow(t, sharpness);
    const double value = rise / (rise + std::pow(1 - t, sharpness));
    append(out, std::bit_cast<std::uint32_t>(static_cast<float>(value)));
  }
  return out;
}

Bytes makeCue(const EntryOrder& order) {
  static constexpr std::array<std::string_view, 4> kCues = {"Start.wav", "Shot.wav", "Beep.wav",
                                                            "Key1216m.wav"};
  return makeSound(kCues[order.noise.below(kCues.size())], order.length / 8,
                   static_cast<unsigned>(order.number));
}

Bytes makePicture(const EntryOrder& order) {
  const int side = sideFor(order.length / 2);
  return toPng(drawDesktop(side * 4 / 3, side, order.noise));
}

struct Kind {
  std::string_view name;
  Bytes (*make)(const EntryOrder&);
};

// The turns in which a pack is filled; what packs well comes more often, as in any program.
constexpr std::array kTurns = {
    Kind{"skin", makeSkin},       Kind{"messages", makeMessages}, Kind{"curve", makeCurve},
    Kind{"skin", makeSkin},       Kind{"cue", makeCue},           Kind{"messages", makeMessages},
    Kind{"picture", makePicture},
};

}  // namespace

void appendPackEntry(Bytes& pack, std::string_view name, const Bytes& contents) {
  std::string padded(name);
  padded.resize(kNameLength);
  append(pack, std::string_view(padded));
  append(pack, static_cast<std::uint32_t>(contents.size()));
  append(pack, contents);
}

Bytes makeDataPack(std::string_view subject, std::uint8_t nameByte, std::size_t packedSize) {
  Noise noise(subject);
  const std::size_t length =
      std::clamp(packedSize / kEntriesAtLeast, kSmallestEntry, kLargestEntry);
  Bytes pack;
  append(pack, "ZEVDATA1");
  std::size_t used = pack.size();
  std::size_t inVain = 0;
  for (std::size_t number = 0; inVain < kTurns.size(); ++number) {
    const Kind& kind = kTurns[number % kTurns.size()];
    Bytes entry;
    appendPackEntry(entry, std::string(kind.name) + std::to_string(number),
                    kind.make({number, length, noise}));
    const std::size_t size = sample::packedSize(entry, nameByte);
    const bool fits = used + size <= packedSize;
    inVain = fits ? 0 : inVain + 1;
    if (!fits) continue;
    used += size;
    append(pack, entry);
  }
  return pack;
}

}  // namespace zev::sample
