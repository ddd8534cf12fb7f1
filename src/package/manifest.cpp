#include "package/manifest.h"

namespace zev {
namespace {

using enum Target;
using C = Condition;

// clang-format off
constexpr std::array<ManifestRow, manifestSlots> manifestRows = {{
    { 1, u"MCD28m.wa_",                     u"MCD28m.wav",                     Install,        194,  0,   5,   7},
    { 2, u"MCU28m.wa_",                     u"MCU28m.wav",                     Install,        178,  1,   9,  10},
    { 3, u"Screen Recorder 6.ex_",          u"Screen Recorder 6.exe",          Install,  4'532'336,  2,  11,  12, C::Mandatory},
    { 0, u"",                               u"",                               None,             0,  3,   0,   0},
    { 4, u"Stop.wa_",                       u"Stop.wav",                       Install,      2'576,  4,  13,  14, C::Always, u"", u"", Plain::InTitle},
    { 5, u"StartShort.wa_",                 u"StartShort.wav",                 Install,      6'938,  5,  15,  16},
    { 6, u"Start.wa_",                      u"Start.wav",                      Install,     10'594,  6,  17,  18},
    { 7, u"Shot.wa_",                       u"Shot.wav",                       Install,      2'990,  7,  19,  20},
    { 8, u"Key118m.wa_",                    u"Key118m.wav",                    Install,        677,  8,  21,  22},
    { 9, u"Key1116m.wa_",                   u"Key1116m.wav",                   Install,        892,  9,  23,  24},
    {10, u"Key128m.wa_",                    u"Key128m.wav",                    Install,      1'175, 10,  25,  26},
    {11, u"MCD18m.wa_",                     u"MCD18m.wav",                     Install,        122, 11,  27,  28},
    {12, u"MCU18m.wa_",                     u"MCU18m.wav",                     Install,        112, 12,  29,  30},
    {13, u"Beep.wa_",                       u"Beep.wav",                       Install,      3'375, 13,  31,  32},
    {14, u"Click.wa_",                      u"Click.wav",                      Install,      1'055, 14,  33,  34},
    {15, u"Uninstall Screen Recorder 6.ex_", u"Uninstall Screen Recorder 6.exe", Install,    8'628, 15,  35,  36, C::Always,
         u"ZEV uninstall file could not be extracted!", u"ZEV 'Uninstall' file could not be expanded!"},
    {16, u"ZEV6.ch_",                       u"ZEV6.chm",                       Install,     98'743, 16,  37,  38, C::Always,
         u"ZEV help file could not be extracted!", u"ZEV help file could not be expanded!"},
    {17, u"Graphics.ze_",                   u"Graphics.zev",                   Install,     99'993, 17,  39,  40},
    {18, u"ZEVDefault.pa_",                 u"ZEVDefault.pal",                 Install,      1'173, 18,  41,  42},
    {19, u"Qmark.jp_",                      u"Qmark.jpg",                      Install,        586, 19,  43,  44},
    {20, u"BlueCursor.cu_",                 u"BlueCursor.cur",                 Install,      1'066, 20,  45,  46},
    {21, u"GreenCursor.cu_",                u"GreenCursor.cur",                Install,      1'066, 21,  47,  48},
    {22, u"RedCursor.cu_",                  u"RedCursor.cur",                  Install,      1'066, 22,  49,  50},
    {23, u"YellowCursor.cu_",               u"YellowCursor.cur",               Install,      1'073, 23,  51,  52},
    {24, u"SampleAVI.av_",                  u"SampleAVI.avi",                  Install,  5'732'115, 24,  53,  54},
    {25, u"ZEVUser.ex_",                    u"ZEVUser.exe",                    Install,     18'752, 25,  55,  56, C::OtherClasses},
    {26, u"SWFGraphs.ze_",                  u"SWFGraphs.zev",                  Install,     11'090, 26,  57,  58},
    {27, u"zevatswf.dl_",                   u"zevatswf.dll",                   System,     334'131, 27,  59,  60},
    {28, u"zevatwmv.dl_",                   u"zevatwmv.dll",                   System,      81'754, 28,  61,  62},
    {29, u"SampleProject.zr_",              u"SampleProject.zrd",              Projects,       955, 29,  65,  66, C::ProjectsFolder},
    {30, u"UninstallZEV6.ex_",              u"UninstallZEV6.exe",              Install,    141'873, 30,  68,  69, C::Always,
         u"ZEV uninstall file could not be extracted!", u"ZEV 'Uninstall' file could not be expanded!"},
    {31, u"vcredist_x86.ex_",               u"vcredist_x86.exe",               Install,  2'973'945, 31,  70,  71, C::Redistributable,
         u"vcredist_x86.exe could not be extracted!", u"vcredist_x86.exe file could not be expanded!"},
    {32, u"zevmgps.dl_",                    u"zevmgps.dll",                    System,     113'812, 32,  75,  76},
    {33, u"zevmgcv.dl_",                    u"zevmgcv.dll",                    System,     382'130, 33,  77,  78},
    {34, u"zevgvas.dl_",                    u"zevgvas.dll",                    System,      44'190, 34,  79,  80},
    {35, u"MCD116m.wa_",                    u"MCD116m.wav",                    Install,        160, 35,  81,  82},
    {36, u"MCU116m.wa_",                    u"MCU116m.wav",                    Install,        137, 36,  83,  84, C::Always, u"", u"", Plain::InText},
    {37, u"MCD216m.wa_",                    u"MCD216m.wav",                    Install,        248, 37,  85,  86},
    {38, u"MCU216m.wa_",                    u"MCU216m.wav",                    Install,        225, 38,  87,  88},
    {39, u"Key1216m.wa_",                   u"Key1216m.wav",                   Install,      1'587, 39,  89,  90},
    {40, u"Key218m.wa_",                    u"Key218m.wav",                    Install,        546, 40,  91,  92},
    {41, u"Key2116m.wa_",                   u"Key2116m.wav",                   Install,        690, 41,  93,  94},
    {42, u"Key228m.wa_",                    u"Key228m.wav",                    Install,        886, 42,  95,  96},
    {43, u"Key2216m.wa_",                   u"Key2216m.wav",                   Install,      1'155, 43,  97,  98},
    {44, u"Key318m.wa_",                    u"Key318m.wav",                    Install,        534, 44,  99, 100},
    {45, u"Key3116m.wa_",                   u"Key3116m.wav",                   Install,        648, 45, 102, 103},
    {46, u"Key328m.wa_",                    u"Key328m.wav",                    Install,        872, 46, 104, 105},
    {47, u"Key3216m.wa_",                   u"Key3216m.wav",                   Install,      1'036, 47, 106, 107},
    {48, u"Screen Recorder 6.exe.ma_",      u"Screen Recorder 6.exe.manifest", Install,        667, 48, 108, 109, C::ProfileClass},
    {49, u"VideoPlayer.ze_",                u"VideoPlayer.zev",                Install,     42'688, 49, 110, 111},
    {50, u"VideoPlayer1.ze_",               u"VideoPlayer1.zev",               Install,    110'856, 50, 112, 113},
    {51, u"VideoPlayer2.ze_",               u"VideoPlayer2.zev",               Install,     94'248, 51, 114, 115},
    {52, u"ZEVDELang.da_",                  u"ZEVDELang.dat",                  Install,     91'379, 52, 116, 117},
    {53, u"ZEVFRLang.da_",                  u"ZEVFRLang.dat",                  Install,     91'336, 53, 118, 119},
    {54, u"ZEVSPLang.da_",                  u"ZEVSPLang.dat",                  Install,     90'274, 54, 120, 121},
    {55, u"zevlback.dl_",                   u"zevlback.dll",                   System,      49'875, 55, 122, 123},
    {56, u"zeveffs.dl_",                    u"zeveffs.dll",                    System,      55'182, 56, 124, 125},
}};
// clang-format on

constexpr std::int32_t sumOfSizes(std::size_t slots) {
  std::int32_t sum = 0;
  for (std::size_t slot = 0; slot < slots; ++slot) sum += manifestRows[slot].size;
  return sum;
}

static_assert(sumOfSizes(manifestSlots) == packageSize);

Text usualText(const ManifestRow& row, TextView what) {
  return join(u"File '", row.installedName, u"' could not be ", what, u"!");
}

}  // namespace

std::span<const ManifestRow, manifestSlots> manifest() { return manifestRows; }

Text extractionFailure(const ManifestRow& row) {
  return row.extractionText.empty() ? usualText(row, u"extracted") : Text(row.extractionText);
}

Text expansionFailure(const ManifestRow& row) {
  return row.expansionText.empty() ? usualText(row, u"expanded") : Text(row.expansionText);
}

std::int32_t tailOffset(std::size_t slot) { return sumOfSizes(slot); }

}  // namespace zev
