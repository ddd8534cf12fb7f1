#include "sample/sounds.h"

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <string>
#include <vector>

#include "sample/noise.h"

namespace zev::sample {
namespace {

/// One sound: a tone that glides from one pitch to another, mixed with noise and fading out.
struct Sound {
  std::string_view name;
  int bits;
  int rate;  // samples a second
  double startHertz;
  double endHertz;
  double noiseShare;  // 0 a pure tone, 1 noise alone
  double fading;      // how many times the sound falls to 1/e over its length
  double loudness;    // of full scale
};

// The names of the clicks and keys tell the sound (MCD button down, MCU button up, Key), its
// number, the bits of a sample (8 or 16) and "m" for mono.
constexpr std::array kSounds = {
    Sound{"MCD18m.wav", 8, 8000, 2400, 900, 0.60, 3.0, 0.80},
    Sound{"MCU18m.wav", 8, 8000, 2900, 1300, 0.60, 3.0, 0.70},
    Sound{"MCD28m.wav", 8, 11025, 2100, 700, 0.55, 3.0, 0.85},
    Sound{"MCU28m.wav", 8, 11025, 2600, 1100, 0.55, 3.0, 0.75},
    Sound{"MCD116m.wav", 16, 8000, 2400, 900, 0.60, 3.0, 0.80},
    Sound{"MCU116m.wav", 16, 8000, 2900, 1300, 0.60, 3.0, 0.70},
    Sound{"MCD216m.wav", 16, 11025, 2100, 700, 0.55, 3.0, 0.85},
    Sound{"MCU216m.wav", 16, 11025, 2600, 1100, 0.55, 3.0, 0.75},
    Sound{"Key118m.wav", 8, 22050, 1500, 500, 0.70, 3.5, 0.80},
    Sound{"Key1116m.wav", 16, 11025, 1500, 500, 0.70, 3.5, 0.80},
    Sound{"Key128m.wav", 8, 22050, 1200, 420, 0.65, 3.5, 0.85},
    Sound{"Key1216m.wav", 16, 22050, 1200, 420, 0.65, 3.5, 0.85},
    Sound{"Key218m.wav", 8, 22050, 1800, 640, 0.75, 3.5, 0.75},
    Sound{"Key2116m.wav", 16, 11025, 1800, 640, 0.75, 3.5, 0.75},
    Sound{"Key228m.wav", 8, 22050, 1650, 580, 0.70, 3.5, 0.80},
    Sound{"Key2216m.wav", 16, 22050, 1650, 580, 0.70, 3.5, 0.80},
    Sound{"Key318m.wav", 8, 22050, 900, 300, 0.80, 4.0, 0.90},
    Sound{"Key3116m.wav", 16, 11025, 900, 300, 0.80, 4.0, 0.90},
    Sound{"Key328m.wav", 8, 22050, 820, 260, 0.75, 4.0, 0.90},
    Sound{"Key3216m.wav", 16, 22050, 820, 260, 0.75, 4.0, 0.90},
    Sound{"Stop.wav", 8, 11025, 660, 330, 0.08, 2.0, 0.70},
    Sound{"StartShort.wav", 16, 11025, 440, 660, 0.05, 1.5, 0.60},
    Sound{"Start.wav", 16, 11025, 330, 880, 0.05, 1.5, 0.60},
    Sound{"Shot.wav", 8, 11025, 3200, 200, 0.85, 3.0, 0.90},
    Sound{"Beep.wav", 16, 11025, 1000, 1000, 0.02, 1.0, 0.60},
    Sound{"Click.wav", 16, 22050, 2500, 1200, 0.50, 4.0, 0.80},
};

const Sound& soundNamed(std::string_view name) {
  const auto found = std::ranges::find(kSounds, name, &Sound::name);
  if (found == kSounds.end()) throw std::invalid_argument("no sound " + std::string(name));
  return *found;
}

std::vector<short> samplesOf(const Sound& sound, std::size_t count, unsigned take) {
  Noise noise(sound.name, take);
  std::vector<short> samples(count);
  double phase = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const double place = static_cast<double>(i) / static_cast<double>(count);
    const double hertz = sound.startHertz + (sound.endHertz - sound.startHertz) * place;
    phase += 2 * std::numbers::pi * hertz / sound.rate;
    const double mixed =
        (1 - sound.noiseShare) * std::sin(phase) + sound.noiseShare * noise.signedUnit();
    const double level = 32767 * sound.loudness * std::exp(-sound.fading * place);
    samples[i] = static_cast<short>(std::lround(level * mixed));
  }
  return samples;
}

/// A file in memory for the sound library, which writes and seeks in it.
struct MemoryFile {
  Bytes bytes;
  sf_count_t place = 0;

  static MemoryFile& of(void* user) { return *static_cast<MemoryFile*>(user); }
  static sf_count_t length(void* user) { return static_cast<sf_count_t>(of(user).bytes.size()); }
  static sf_count_t tell(void* user) { return of(user).place; }
  static sf_count_t seek(sf_count_t offset, int whence, void* user) {
    const sf_count_t origin = whence == SEEK_SET   ? 0
                              : whence == SEEK_CUR ? of(user).place
                                                   : length(user);
    return of(user).place = origin + offset;
  }
  static sf_count_t read(void* target, sf_count_t count, void* user) {
    const sf_count_t taken = std::clamp<sf_count_t>(length(user) - tell(user), 0, count);
    std::copy_n(of(user).bytes.begin() + tell(user), taken, static_cast<std::uint8_t*>(target));
    of(user).place += taken;
    return taken;
  }
  static sf_count_t write(const void* source, sf_count_t count, void* user) {
    Bytes& bytes = of(user).bytes;
    const auto end = static_cast<std::size_t>(tell(user) + count);
    if (bytes.size() < end) bytes.resize(end);
    std::copy_n(static_cast<const std::uint8_t*>(source), count, bytes.begin() + tell(user));
    of(user).place += count;
    return count;
  }
};

}  // namespace

Bytes makeSound(std::string_view installedName, std::size_t samples, unsigned take) {
  const Sound& sound = soundNamed(installedName);
  SF_INFO info{};
  info.channels = 1;
  info.samplerate = sound.rate;
  info.format = SF_FORMAT_WAV | (sound.bits == 8 ? SF_FORMAT_PCM_U8 : SF_FORMAT_PCM_16);
  SF_VIRTUAL_IO io{MemoryFile::length, MemoryFile::seek, MemoryFile::read, MemoryFile::write,
                   MemoryFile::tell};
  MemoryFile file;
  SNDFILE* encoder = sf_open_virtual(&io, SFM_WRITE, &info, &file);
  if (encoder == nullptr) throw std::runtime_error(sf_strerror(nullptr));
  const std::vector<short> wave = samplesOf(sound, samples, take);
  const auto count = static_cast<sf_count_t>(wave.size());
  const bool written = sf_write_short(encoder, wave.data(), count) == count;
  if (sf_close(encoder) != 0 || !written) throw std::runtime_error("sound not written");
  return std::move(file.bytes);
}

}  // namespace zev::sample
