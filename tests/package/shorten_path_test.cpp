#include "package/shorten_path.h"

#include <gtest/gtest.h>

#include "support/fake_form_engine.h"
#include "support/raised.h"

namespace zev {
namespace {

using test::raisedBy;

constexpr std::int32_t twips = 1;
constexpr std::int32_t pixels = 3;

/// Shortens for a label of some width on a form of some scale; a character is 6 pixels wide, a
/// pixel 15 twips.
Text shorten(TextView path, std::int32_t width, std::int32_t scaleMode = twips) {
  const ControlDesign design[] = {
      {.name = u"Label12", .kind = ControlKind::Label, .place = {0, 0, width, 255}}};
  Form form({.name = u"Form1", .caption = u"", .controls = design});
  form.ScaleMode = scaleMode;
  test::FakeFormEngine engine;
  return ShortenPathForLabel(engine, path, form, form.control<Label>(u"Label12"));
}

struct Shortened {
  TextView path;
  TextView shown;
};

/// In a label as wide as 20 characters, 120 pixels.
constexpr Shortened rows[] = {
    {u"", u""},
    {u"   ", u""},
    {u"C:\\a.wav", u"C:\\a.wav"},
    // 20 characters fit, 21 do not.
    {u"C:\\Programs\\abcd.wav", u"C:\\Programs\\abcd.wav"},
    {u"C:\\Programs\\abcde.wav", u"C:\\Pro...\\abcde.wav"},
    // A long folder loses characters until folder and name are narrower than the label.
    {u"C:\\Program Files\\Screen Recorder 6\\Beep.wav", u"C:\\Prog...\\Beep.wav"},
    // Three characters go in any case.
    {u"C:\\Prog\\Beep4567890.wav", u"C...\\Beep4567890.wav"},
    {u"C:\\Programs and more\\a.b", u"C:\\Programs...\\a.b"},
    // Blanks at the ends of both parts count for nothing.
    {u"C:\\Pro grams\\abcd.wav", u"C:\\Pro...\\abcd.wav"},
    {u"C:\\Programs\\ bcde.wav", u"C:\\Prog...\\bcde.wav"},
    // A path without a backslash stays.
    {u"a name without any folder.wav", u"a name without any folder.wav"},
    {u"a/name/of/another/system.wav", u"a/name/of/another/system.wav"},
    // A name as wide as the label, or wider, stands alone.
    {u"C:\\Programs\\sixteen_letters1.wav", u"sixteen_letters1.wav"},
    {u"C:\\Programs\\a_name_of_many_letters.wav", u"a_name_of_many_letters.wav"},
    // A narrower one keeps one character of the folder, though both are too wide together.
    {u"C:\\Programs\\fifteen_letters.wav", u"C...\\fifteen_letters.wav"},
    // A folder of three characters vanishes, one of four leaves its first.
    {u"ABC\\fourteenletter.wav", u"...\\fourteenletter.wav"},
    {u"ABCD\\fourteenletter.wav", u"A...\\fourteenletter.wav"},
    // The last backslash parts folder and name; the name can be empty.
    {u"C:\\Program Files\\Zev1\\", u"C:\\Program File...\\"},
};

TEST(ShortenPath, CutsWhatDoesNotFit) {
  for (const Shortened& each : rows) {
    EXPECT_EQ(toUtf8(shorten(each.path, 20 * 6 * 15)), toUtf8(each.shown)) << toUtf8(each.path);
  }
}

TEST(ShortenPath, TakesWidthsInUnitsOfAnotherScaleAsTheyAre) {
  for (const Shortened& each : rows) {
    EXPECT_EQ(toUtf8(shorten(each.path, 20 * 6, pixels)), toUtf8(each.shown)) << toUtf8(each.path);
  }
}

TEST(ShortenPath, RaisesAnErrorForAFolderTooShortToCut) {
  EXPECT_EQ(raisedBy([] { shorten(u"C:\\eighteenletters.wav", 20 * 6 * 15); }), 5);
  EXPECT_EQ(raisedBy([] { shorten(u"\\fifteen_letters.wav", 20 * 6 * 15 - 8); }), 5);
  EXPECT_EQ(raisedBy([] { shorten(u"C:\\eighteenletters.wav", 20 * 6, pixels); }), 5);
}

TEST(ShortenPath, RoundsTheWidthOfTheLabelToPixels) {
  constexpr TextView path = u"C:\\Programs\\abcd.wav";  // 20 characters, 120 pixels
  EXPECT_EQ(shorten(path, 1793), path);                 // 119.53 pixels
  EXPECT_NE(shorten(path, 1792), path);                 // 119.47 pixels
}

TEST(ShortenPath, FitsTheLabelOfTheWizard) {
  constexpr TextView path =
      u"C:\\Program Files\\ZEV\\Screen Recorder 6\\Uninstall Screen Recorder 6.exe";
  EXPECT_EQ(toUtf8(shorten(path, 5175)),
            "C:\\Program Files\\ZEV\\S...\\Uninstall Screen Recorder 6.exe");
}

}  // namespace
}  // namespace zev
