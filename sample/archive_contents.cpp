#include "sample/archive_contents.h"

#include <string>

#include "sample/drawing.h"
#include "sample/embedded.h"

namespace zev::sample {
namespace {

constexpr int kButtonSide = 32;
constexpr int kPictures = 40;
constexpr int kButtons = 60;
constexpr int kPlayerButtons = 4;

void drawSymbol(Drawing& button, int kind) {
  constexpr Colour kInk{250, 250, 250};
  switch (kind % 4) {
    case 0:
      button.pointer({11, 8, 14, 16}, kInk);
      break;
    case 1:
      button.fill({10, 10, 12, 12}, kInk);
      break;
    case 2:
      button.fill({9, 9, 5, 14}, kInk);
      button.fill({18, 9, 5, 14}, kInk);
      break;
    default:
      button.disc(16, 16, 6, kInk);
  }
}

Entry makeButton(int number, Noise& noise) {
  Drawing button(kButtonSide, kButtonSide, {232, 236, 242});
  const Colour tint{noise.byte(), 110, noise.byte()};
  for (int radius = 15; radius > 0; --radius) {
    button.disc(16, 16, radius, blend({255, 255, 255}, tint, radius, 15));
  }
  button.grain({4, 20, 24, 8}, 3, noise);
  drawSymbol(button, number);
  return {"button" + std::to_string(number) + ".png", toPng(button)};
}

Entry makeBalloon(int number, Noise& noise) {
  Drawing balloon(96, 64);
  const Colour tint{noise.byte(), noise.byte(), 120};
  balloon.gradient({4, 4, 88, 44}, {255, 255, 250}, blend({255, 255, 255}, tint, 1, 2));
  balloon.frame({4, 4, 88, 44}, tint);
  balloon.pointer({18, 48, 20, 14}, tint);
  balloon.writing({12, 12, 72, 30}, {60, 60, 70}, noise);
  return {"balloon" + std::to_string(number) + ".png", toPng(balloon)};
}

Entry makeScene(std::string_view name, int number, Noise& noise) {
  return {std::string(name) + std::to_string(number) + ".png", toPng(drawDesktop(112, 84, noise))};
}

std::vector<Entry> graphics(Noise& noise) {
  std::vector<Entry> entries;
  for (int i = 0; i < kPictures; ++i) {
    entries.push_back(makeBalloon(i, noise));
    entries.push_back(makeScene("background", i, noise));
  }
  return entries;
}

std::vector<Entry> flashButtons(Noise& noise) {
  std::vector<Entry> entries;
  for (int i = 0; i < kButtons; ++i) entries.push_back(makeButton(i, noise));
  return entries;
}

std::vector<Entry> player(Noise& noise) {
  std::vector<Entry> entries;
  for (const char* name : {"player.html", "player.css", "player.js"}) {
    const auto file = embeddedFile(name);
    entries.push_back({name, Bytes(file.begin(), file.end())});
  }
  for (int i = 0; i < kPlayerButtons; ++i) entries.push_back(makeButton(i, noise));
  for (int i = 0; i < kPictures; ++i) entries.push_back(makeScene("poster", i, noise));
  return entries;
}

}  // namespace

std::vector<Entry> archiveCandidates(std::string_view installedName) {
  Noise noise(installedName);
  if (installedName == "Graphics.zev") return graphics(noise);
  return installedName == "SWFGraphs.zev" ? flashButtons(noise) : player(noise);
}

}  // namespace zev::sample
