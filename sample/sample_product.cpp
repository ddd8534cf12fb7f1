#include "sample/sample_product.h"

#include <algorithm>
#include <array>
#include <functional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "sample/archive.h"
#include "sample/archive_contents.h"
#include "sample/data_pack.h"
#include "sample/embedded.h"
#include "sample/fit.h"
#include "sample/help.h"
#include "sample/known_fits.h"
#include "sample/languages.h"
#include "sample/pictures.h"
#include "sample/sounds.h"
#include "sample/texts.h"
#include "sample/video.h"

namespace zev {
namespace {

using namespace zev::sample;

/// What a recipe is asked for.
struct Order {
  std::string_view installedName;
  std::uint8_t nameByte;
  std::size_t packedSize;
  std::optional<Fit> guess;

  Fitted fit(const Build& build) const {
    return fitToPackedSize(build, nameByte, packedSize, guess);
  }
  std::size_t packed(std::span<const std::uint8_t> plain) const {
    return sample::packedSize(plain, nameByte);
  }
};

// Packed bytes that a file is short of its length before its room is filled: enough for the search
// to have a choice of fillers.
constexpr std::size_t kMargin = 400;

std::string letters(std::size_t length, unsigned take) {
  const Bytes bytes = filler(length, take, kPlainLetters);
  return {bytes.begin(), bytes.end()};
}

Bytes bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

/// The largest number of parts, at most `parts`, with which the file is still short of its length
/// by the margin. `build` makes the file of a number of parts, longer with each part.
std::size_t partsThatFit(const Order& order, std::size_t parts,
                         const std::function<Bytes(std::size_t)>& build) {
  std::size_t fitting = 0;
  std::size_t tooMany = parts + 1;
  while (tooMany - fitting > 1) {
    const std::size_t middle = fitting + (tooMany - fitting) / 2;
    const bool fits = order.packed(build(middle)) + kMargin <= order.packedSize;
    (fits ? fitting : tooMany) = middle;
  }
  return fitting;
}

Fitted sound(const Order& order) {
  return order.fit(
      [&](std::size_t room, unsigned take) { return makeSound(order.installedName, room, take); });
}

/// An image with its data pack behind it; the last entry of the pack is the room.
Fitted program(const Order& order) {
  const auto image = embeddedFile(order.installedName);
  Bytes file(image.begin(), image.end());
  const std::size_t taken = order.packed(file) + kMargin;
  if (taken > order.packedSize) throw std::length_error("image longer than its row");
  append(file, makeDataPack(order.installedName, order.nameByte, order.packedSize - taken));
  return order.fit([&](std::size_t room, unsigned take) {
    Bytes whole = file;
    appendPackEntry(whole, "reserve", filler(room, take));
    return whole;
  });
}

Fitted archive(const Order& order) {
  std::vector<Entry> entries = archiveCandidates(order.installedName);
  const std::size_t count = partsThatFit(order, entries.size(), [&](std::size_t parts) {
    const auto end = entries.begin() + static_cast<std::ptrdiff_t>(parts);
    return makeArchive({entries.begin(), end}, {});
  });
  entries.resize(count);
  return order.fit([&](std::size_t room, unsigned take) {
    return makeArchive(entries, filler(room, take, kPlainLetters));
  });
}

Fitted language(const Order& order, Language which) {
  const std::vector<std::string> sections = languageSections(which);
  const auto text = [&](std::size_t parts) {
    Bytes out;
    for (std::size_t i = 0; i < parts; ++i) append(out, std::string_view(sections[i]));
    return out;
  };
  const Bytes body = text(partsThatFit(order, sections.size(), text));
  return order.fit([&](std::size_t room, unsigned take) {
    Bytes out = body;
    append(out, "[File]\r\nSignature=" + letters(room, take) + "\r\n");
    return out;
  });
}

Fitted german(const Order& order) { return language(order, Language::kGerman); }
Fitted french(const Order& order) { return language(order, Language::kFrench); }
Fitted spanish(const Order& order) { return language(order, Language::kSpanish); }

Fitted video(const Order& order) {
  const Bytes movie = makeVideo(order.nameByte, order.packedSize - kMargin);
  return order.fit(
      [&](std::size_t room, unsigned take) { return withJunkChunk(movie, filler(room, take)); });
}

Fitted help(const Order& order) {
  return order.fit([](std::size_t room, unsigned take) { return makeHelp(filler(room, take)); });
}

Fitted palette(const Order& order) {
  return order.fit([](std::size_t room, unsigned take) { return makePalette(filler(room, take)); });
}

Fitted questionMark(const Order& order) {
  return order.fit(
      [](std::size_t room, unsigned take) { return makeQuestionMark(filler(room, take)); });
}

Fitted cursor(const Order& order, Colour tint) {
  return order.fit(
      [&](std::size_t room, unsigned take) { return makeCursor(tint, filler(room, take)); });
}

Fitted blueCursor(const Order& order) { return cursor(order, {60, 110, 250}); }
Fitted greenCursor(const Order& order) { return cursor(order, {50, 190, 80}); }
Fitted redCursor(const Order& order) { return cursor(order, {235, 60, 50}); }
Fitted yellowCursor(const Order& order) { return cursor(order, {250, 225, 60}); }

Fitted applicationManifest(const Order& order) {
  return order.fit([](std::size_t room, unsigned take) {
    return bytesOf(makeApplicationManifest(letters(room, take)));
  });
}

Fitted project(const Order& order) {
  return order.fit(
      [](std::size_t room, unsigned take) { return bytesOf(makeProject(letters(room, take))); });
}

/// How the files whose name ends in `ending` are made.
struct Recipe {
  std::string_view ending;
  Fitted (*make)(const Order&);
};

// The first row that matches counts.
constexpr std::array kRecipes = {
    Recipe{"BlueCursor.cur", blueCursor},
    Recipe{"GreenCursor.cur", greenCursor},
    Recipe{"RedCursor.cur", redCursor},
    Recipe{"YellowCursor.cur", yellowCursor},
    Recipe{"ZEVDELang.dat", german},
    Recipe{"ZEVFRLang.dat", french},
    Recipe{"ZEVSPLang.dat", spanish},
    Recipe{"Qmark.jpg", questionMark},
    Recipe{"ZEVDefault.pal", palette},
    Recipe{"ZEV6.chm", help},
    Recipe{"SampleAVI.avi", video},
    Recipe{"SampleProject.zrd", project},
    Recipe{".exe.manifest", applicationManifest},
    Recipe{".wav", sound},
    Recipe{".zev", archive},
    Recipe{".exe", program},
    Recipe{".dll", program},
};

const Recipe& recipeFor(const std::string& installedName) {
  const auto found = std::ranges::find_if(kRecipes, [&](const Recipe& recipe) {
    return std::string_view(installedName).ends_with(recipe.ending);
  });
  if (found == kRecipes.end()) throw std::invalid_argument("no sample file " + installedName);
  return *found;
}

}  // namespace

SampleProduct::SampleProduct(std::vector<SampleRow> rows, Guessing guessing)
    : rows_(std::move(rows)), guessing_(guessing) {}

SampleFile SampleProduct::make(std::size_t index) const {
  const SampleRow& wanted = row(index);
  const auto guess = guessing_ == Guessing::Yes ? knownFit(wanted.installedName) : std::nullopt;
  const Order order{wanted.installedName, nameByte(index), wanted.packedSize, guess};
  Fitted made = recipeFor(wanted.installedName).make(order);
  return {wanted.packedName, wanted.installedName, std::move(made.plain), made.fit};
}

std::uint8_t SampleProduct::nameByte(std::size_t index) const {
  const SampleRow& wanted = row(index);
  return static_cast<std::uint8_t>(wanted.installedName.at(wanted.packedName.size() - 1));
}

}  // namespace zev
