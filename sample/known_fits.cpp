#include "sample/known_fits.h"

#include <algorithm>
#include <array>

namespace zev::sample {
namespace {

struct KnownFit {
  std::string_view installedName;
  Fit fit;
};

constexpr auto knownFits = std::to_array<KnownFit>({
    {"Beep.wav", {1474, 3}},
    {"BlueCursor.cur", {444, 0}},
    {"Click.wav", {442, 5}},
    {"Graphics.zev", {821, 0}},
    {"GreenCursor.cur", {444, 0}},
    {"Key1116m.wav", {369, 4}},
    {"Key118m.wav", {570, 2}},
    {"Key1216m.wav", {678, 2}},
    {"Key128m.wav", {1040, 0}},
    {"Key2116m.wav", {280, 1}},
    {"Key218m.wav", {445, 1}},
    {"Key2216m.wav", {486, 0}},
    {"Key228m.wav", {767, 6}},
    {"Key3116m.wav", {262, 1}},
    {"Key318m.wav", {440, 0}},
    {"Key3216m.wav", {433, 2}},
    {"Key328m.wav", {770, 2}},
    {"MCD116m.wav", {45, 21}},
    {"MCD18m.wav", {57, 0}},
    {"MCD216m.wav", {84, 12}},
    {"MCD28m.wav", {121, 0}},
    {"MCU116m.wav", {34, 0}},
    {"MCU18m.wav", {49, 4}},
    {"MCU216m.wav", {74, 17}},
    {"MCU28m.wav", {108, 0}},
    {"Qmark.jpg", {132, 0}},
    {"RedCursor.cur", {444, 0}},
    {"SWFGraphs.zev", {1098, 0}},
    {"SampleAVI.avi", {96428, 1}},
    {"SampleProject.zrd", {346, 2}},
    {"Screen Recorder 6.exe", {6958, 0}},
    {"Screen Recorder 6.exe.manifest", {112, 0}},
    {"Shot.wav", {2681, 10}},
    {"Start.wav", {4691, 11}},
    {"StartShort.wav", {3061, 4}},
    {"Stop.wav", {2372, 11}},
    {"Uninstall Screen Recorder 6.exe", {917, 0}},
    {"UninstallZEV6.exe", {1037, 0}},
    {"VideoPlayer.zev", {1866, 0}},
    {"VideoPlayer1.zev", {5063, 1}},
    {"VideoPlayer2.zev", {363, 0}},
    {"YellowCursor.cur", {450, 0}},
    {"ZEV6.chm", {14054, 0}},
    {"ZEVDELang.dat", {410, 0}},
    {"ZEVDefault.pal", {8, 0}},
    {"ZEVFRLang.dat", {415, 0}},
    {"ZEVSPLang.dat", {905, 0}},
    {"ZEVUser.exe", {1295, 0}},
    {"vcredist_x86.exe", {11306, 0}},
    {"zevatswf.dll", {1979, 0}},
    {"zevatwmv.dll", {728, 0}},
    {"zeveffs.dll", {1009, 0}},
    {"zevgvas.dll", {719, 0}},
    {"zevlback.dll", {1334, 0}},
    {"zevmgcv.dll", {5964, 0}},
    {"zevmgps.dll", {1688, 0}},
});

}  // namespace

std::optional<Fit> knownFit(std::string_view installedName) {
  const auto found = std::ranges::find(knownFits, installedName, &KnownFit::installedName);
  return found == knownFits.end() ? std::nullopt : std::optional(found->fit);
}

}  // namespace zev::sample
