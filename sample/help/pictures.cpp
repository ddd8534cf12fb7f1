// Draws the pictures of the help pages into the folder that is named as the only argument.

#include <fstream>
#include <iostream>
#include <string>

#include "sample/drawing.h"

namespace {

using zev::sample::Area;
using zev::sample::Drawing;
using zev::sample::Noise;

Drawing desktop(Noise& noise) { return drawDesktop(240, 180, noise); }

Drawing region(Noise& noise) {
  Drawing picture = drawDesktop(200, 150, noise);
  for (int i = 0; i < 3; ++i) {
    picture.frame({40 + i, 30 + i, 120 - 2 * i, 90 - 2 * i}, {220, 40, 40});
  }
  return picture;
}

Drawing window(Noise& noise) {
  Drawing picture(220, 150, {90, 110, 140});
  drawWindow(picture, {12, 10, 196, 130}, {40, 120, 90}, noise);
  picture.frame({10, 8, 200, 134}, {220, 40, 40});
  return picture;
}

Drawing sound(Noise& noise) {
  Drawing picture(240, 60, {24, 28, 34});
  for (int x = 4; x < 236; ++x) {
    const int half = 2 + static_cast<int>(noise.below(22));
    picture.gradient({x, 30 - half, 1, 2 * half}, {90, 230, 120}, {30, 120, 60});
  }
  return picture;
}

Drawing cursor(Noise& noise) {
  Drawing picture(200, 56);
  picture.grain({0, 0, 200, 56}, 4, noise);
  const zev::sample::Colour tints[] = {
      {80, 120, 250}, {70, 200, 90}, {240, 80, 70}, {250, 230, 80}};
  for (int i = 0; i < 4; ++i) {
    picture.disc(28 + 48 * i, 28, 18, tints[i]);
    picture.mouseArrow(24 + 48 * i, 20);
  }
  return picture;
}

Drawing editor(Noise& noise) {
  Drawing picture(260, 180, {60, 64, 72});
  picture.place(drawDesktop(140, 104, noise), 60, 6);
  for (int row = 0; row < 4; ++row) {
    int x = 8;
    while (x < 240) {
      const int width = 14 + static_cast<int>(noise.below(50));
      picture.gradient({x, 118 + row * 15, width, 12}, {noise.byte(), 170, 200}, {60, 90, 130});
      x += width + 3 + static_cast<int>(noise.below(20));
    }
  }
  picture.fill({120, 112, 2, 66}, {240, 60, 60});
  return picture;
}

struct Page {
  const char* name;
  Drawing (*draw)(Noise&);
};

constexpr Page kPages[] = {{"desktop", desktop}, {"region", region}, {"window", window},
                           {"sound", sound},     {"cursor", cursor}, {"editor", editor}};

bool write(const std::string& path, const zev::sample::Bytes& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  return file.good();
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: sample_help_pictures FOLDER\n";
    return 2;
  }
  for (const Page& page : kPages) {
    Noise noise(page.name);
    if (!write(std::string(arguments[1]) + "/" + page.name + ".png", toPng(page.draw(noise)))) {
      std::cerr << "cannot write the picture " << page.name << "\n";
      return 1;
    }
  }
}
