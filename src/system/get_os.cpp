#include "system/get_os.h"

#include <algorithm>
#include <optional>
#include <span>

#include "runtime/error.h"

namespace zev {
namespace {

constexpr std::uint32_t platformWin32s = 0;
constexpr std::uint32_t platform9x = 1;
constexpr std::uint32_t platformNT = 2;
constexpr std::uint32_t platformCE = 3;
constexpr std::uint8_t workstation = 1;

constexpr std::uint16_t architectureX86 = 0;
constexpr std::uint16_t architectureItanium = 6;
constexpr std::uint16_t architectureX64 = 9;

constexpr std::int32_t metricTabletPC = 86;
constexpr std::int32_t metricMediaCenter = 87;
constexpr std::int32_t metricStarter = 88;
constexpr std::int32_t metricServerR2 = 89;

constexpr std::uint16_t suiteEnterprise = 0x2;
constexpr std::uint16_t suiteDatacenter = 0x80;
constexpr std::uint16_t suitePersonal = 0x200;
constexpr std::uint16_t suiteBlade = 0x400;
constexpr std::uint16_t suiteStorageServer = 0x2000;
constexpr std::uint16_t suiteComputeCluster = 0x4000;

/// Names of the 9x line by minor version and build; the first row that fits decides.
struct Name9x {
  std::uint32_t minor;
  std::uint32_t firstBuild;
  std::uint32_t lastBuild;
  TextView name;
};

constexpr std::uint32_t anyBuild = 0xFFFFFFFF;

// clang-format off
constexpr Name9x names9x[] = {
    { 0,  950,      950, u"Win95"},
    { 0,  951,     1080, u"Win95SP1"},
    { 0, 1081, anyBuild, u"Win95OSR2"},
    {10, 1998,     1998, u"Win98"},
    {10, 1999,     2182, u"Win98SP1"},
    {10, 2183, anyBuild, u"Win98SE"},
    {90,    0, anyBuild, u"WinME"},
};
// clang-format on

/// A suffix that a bit of the suite mask gives; the first bit that is set decides.
struct SuiteSuffix {
  std::uint16_t bit;  ///< 0 fits always
  TextView suffix;
};

constexpr SuiteSuffix itaniumServerSuffixes[] = {
    {suiteDatacenter, u"DE"},
    {suiteEnterprise, u"EE"},
};

constexpr SuiteSuffix x64Suffixes[] = {
    {suiteDatacenter, u"DE64"},
    {suiteEnterprise, u"EE64"},
    {0, u"SE64"},
};

constexpr SuiteSuffix otherSuffixes[] = {
    {suiteComputeCluster, u"CCE"},
    {suiteDatacenter, u"DE"},
    {suiteEnterprise, u"EE"},
    {suiteBlade, u"WE"},
    {0, u"SE"},
};

struct ProductSuffix {
  std::uint32_t code;
  TextView suffix;
};

// clang-format off
constexpr ProductSuffix productSuffixes[] = {
    { 1, u"UE"},
    { 2, u"HB"},
    { 3, u"HP"},
    { 4, u"EE"},
    { 6, u"BE"},
    { 7, u"SE"},
    { 8, u"DE"},
    { 9, u"SBS"},
    {10, u"EE"},
    {11, u"SE"},
    {12, u"DEci"},
    {13, u"SEci"},
    {14, u"EEci"},
    {15, u"EEibs"},
    {17, u"WSE"},
    {18, u"CSE"},
    {25, u"SBSP"},
};
// clang-format on

[[noreturn]] void systemFailed() { throw RuntimeError(-1); }

OSVERSIONINFO queryVersion(SystemInformation& system, std::uint32_t form) {
  OSVERSIONINFO record;
  record.dwOSVersionInfoSize = form;
  if (!system.GetVersionExA(record)) systemFailed();
  return record;
}

std::uint16_t architectureOf(SystemInformation& system) {
  bool emulated = false;
  if (!system.IsWow64Process(system.GetCurrentProcess(), emulated)) systemFailed();
  return emulated ? system.GetNativeSystemInfo() : system.GetSystemInfo();
}

TextView suiteSuffix(std::span<const SuiteSuffix> rows, std::uint16_t suite) {
  const auto row = std::find_if(rows.begin(), rows.end(), [&](const SuiteSuffix& each) {
    return each.bit == 0 || (suite & each.bit) != 0;
  });
  return row == rows.end() ? TextView() : row->suffix;
}

TextView name9x(const OSVERSIONINFO& version) {
  const auto row = std::find_if(std::begin(names9x), std::end(names9x), [&](const Name9x& each) {
    return each.minor == version.dwMinorVersion && version.dwBuildNumber >= each.firstBuild &&
           version.dwBuildNumber <= each.lastBuild;
  });
  return row == std::end(names9x) ? TextView() : row->name;
}

TextView name2000(const OSVERSIONINFO& version) {
  if (version.wProductType == workstation) return u"Win2000Prof";
  if ((version.wSuiteMask & suiteDatacenter) != 0) return u"Win2000DS";
  if ((version.wSuiteMask & suiteEnterprise) != 0) return u"Win2000AS";
  return u"Win2000Server";
}

TextView nameXP(SystemInformation& system, const OSVERSIONINFO& version) {
  if (system.GetSystemMetrics(metricMediaCenter) != 0) return u"WinXPMC";
  if (system.GetSystemMetrics(metricStarter) != 0) return u"WinXPSE";
  if (system.GetSystemMetrics(metricTabletPC) != 0) return u"WinXPTPCE";
  return (version.wSuiteMask & suitePersonal) != 0 ? u"WinXPHome" : u"WinXPProf";
}

TextView baseName2003(SystemInformation& system, const OSVERSIONINFO& version,
                      std::uint16_t architecture) {
  if (system.GetSystemMetrics(metricServerR2) != 0) return u"WinServer2003R2";
  if (version.wSuiteMask == suiteStorageServer) return u"WinStorServer2003";
  const bool x64Workstation =
      version.wProductType == workstation && architecture == architectureX64;
  return x64Workstation ? u"WinXP64" : u"WinServer2003";
}

/// The server editions are listed under the product type of a workstation. That is on
/// purpose.
TextView suffix2003(const OSVERSIONINFO& version, std::uint16_t architecture) {
  if (version.wProductType != workstation) {
    if (architecture != architectureItanium) return {};
    return suiteSuffix(itaniumServerSuffixes, version.wSuiteMask);
  }
  if (architecture == architectureX64) return suiteSuffix(x64Suffixes, version.wSuiteMask);
  return suiteSuffix(otherSuffixes, version.wSuiteMask);
}

Text name2003(SystemInformation& system, const OSVERSIONINFO& version) {
  const std::uint16_t architecture = architectureOf(system);
  return join(baseName2003(system, version, architecture), suffix2003(version, architecture));
}

Text nameNT5(SystemInformation& system) {
  const OSVERSIONINFO version = queryVersion(system, OSVERSIONINFO::extendedForm);
  switch (version.dwMinorVersion) {
    case 0:
      return Text(name2000(version));
    case 1:
      return Text(nameXP(system, version));
    case 2:
      return name2003(system, version);
    default:
      return {};
  }
}

TextView baseNameNT6(const OSVERSIONINFO& version) {
  if (version.wProductType != workstation) return u"WinServer2008";
  if (version.dwMinorVersion == 1) return u"Win7";
  return version.dwMinorVersion == 2 ? u"Win8" : u"WinVista";
}

TextView productSuffix(SystemInformation& system) {
  std::uint32_t code = 0;
  system.GetProductInfo(6, 0, 0, 0, code);
  const auto row = std::find_if(std::begin(productSuffixes), std::end(productSuffixes),
                                [&](const ProductSuffix& each) { return each.code == code; });
  return row == std::end(productSuffixes) ? TextView() : row->suffix;
}

TextView widthSuffix(std::uint16_t architecture) {
  if (architecture == architectureX64) return u"64";
  return architecture == architectureX86 ? u"32" : u"";
}

Text nameNT6(SystemInformation& system) {
  const OSVERSIONINFO version = queryVersion(system, OSVERSIONINFO::extendedForm);
  const TextView suffix = productSuffix(system);
  return join(baseNameNT6(version), suffix, widthSuffix(architectureOf(system)));
}

Text nameNT(SystemInformation& system, const OSVERSIONINFO& version) {
  switch (version.dwMajorVersion) {
    case 3:
      return u"WinNT3";
    case 4:
      return u"WinNT4";
    case 5:
      return nameNT5(system);
    case 6:
      return nameNT6(system);
    default:
      return {};
  }
}

Text baseName(SystemInformation& system, const OSVERSIONINFO& version) {
  switch (version.dwPlatformId) {
    case platformWin32s:
      return u"Win3.1";
    case platform9x:
      return Text(name9x(version));
    case platformNT:
      return nameNT(system, version);
    case platformCE:
      return u"WinCE";
    default:
      return {};
  }
}

}  // namespace

std::uint8_t GetOSClass(SystemInformation& system, std::uint8_t& gVersionNT62) {
  OSVERSIONINFO version;
  system.GetVersionExA(version);
  const std::uint32_t major = version.dwMajorVersion;
  if (version.dwPlatformId == platform9x) return 1;
  if (version.dwPlatformId != platformNT) return 0;
  if (major == 6 && version.dwMinorVersion == 2) gVersionNT62 = 1;
  if (major == 6) return 4;
  return major >= 5 ? 3 : 2;
}

Text GetOSName(SystemInformation& system) {
  const OSVERSIONINFO version = queryVersion(system, OSVERSIONINFO::shortForm);
  return join(baseName(system, version), beforeNul(version.szCSDVersion));
}

}  // namespace zev
