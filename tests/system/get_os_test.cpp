#include "system/get_os.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/raised.h"
#include "support/table.h"

namespace zev {
namespace {

using test::raisedBy;
using test::Row;
using test::Table;

constexpr std::uint32_t shortForm = 148;
constexpr std::uint32_t extendedForm = 156;
constexpr std::uint32_t nt = 2;
constexpr std::uint16_t x86 = 0;
constexpr std::uint16_t itanium = 6;
constexpr std::uint16_t x64 = 9;
constexpr std::uint8_t workstation = 1;
constexpr std::uint8_t server = 3;

/// A system as a test describes it. What its processor is depends on who asks: an emulated process
/// sees x86 unless it asks for the native system.
class FakeSystem final : public SystemInformation {
 public:
  std::uint32_t platform = nt;
  std::uint32_t major = 6;
  std::uint32_t minor = 1;
  std::uint32_t build = 7600;
  Text servicePack;
  std::uint16_t suite = 0;
  std::uint8_t productType = workstation;
  std::set<std::int32_t> metrics;  ///< those that are not 0
  std::uint16_t architecture = x64;
  bool emulated = false;
  std::uint32_t productCode = 0;

  std::uint32_t failingForm = 0;  ///< size of the version record that is refused
  bool wow64Fails = false;
  bool productFails = false;
  std::vector<std::string> log;

  bool GetVersionExA(OSVERSIONINFO& record) override {
    log.push_back("version " + std::to_string(record.dwOSVersionInfoSize));
    if (record.dwOSVersionInfoSize == failingForm) return false;
    record.dwPlatformId = platform;
    record.dwMajorVersion = major;
    record.dwMinorVersion = minor;
    record.dwBuildNumber = build;
    const bool extended = record.dwOSVersionInfoSize == extendedForm;
    const Text text = extended ? Text(u"extended") : servicePack;
    std::copy(text.begin(), text.end(), record.szCSDVersion.begin());
    if (!extended) return true;
    record.wSuiteMask = suite;
    record.wProductType = productType;
    return true;
  }
  std::int32_t GetSystemMetrics(std::int32_t index) override {
    log.push_back("metric " + std::to_string(index));
    return metrics.count(index) == 1 ? -1 : 0;
  }
  std::uintptr_t GetCurrentProcess() override { return 77; }
  bool IsWow64Process(std::uintptr_t process, bool& result) override {
    log.emplace_back("wow64");
    EXPECT_EQ(process, 77u);
    if (wow64Fails) return false;
    result = emulated;
    return true;
  }
  std::uint16_t GetNativeSystemInfo() override {
    log.emplace_back("native");
    return architecture;
  }
  std::uint16_t GetSystemInfo() override {
    log.emplace_back("system");
    return emulated ? x86 : architecture;
  }
  bool GetProductInfo(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                      std::uint32_t fourth, std::uint32_t& code) override {
    log.emplace_back("product");
    EXPECT_TRUE(first == 6 && second == 0 && third == 0 && fourth == 0);
    if (productFails) return false;
    code = productCode;
    return true;
  }

  std::uint32_t GetTempPathA(std::uint32_t, Text&) override { return unused(); }
  std::uint32_t GetWindowsDirectoryA(Text&, std::uint32_t) override { return unused(); }
  std::uint32_t GetSystemDirectoryA(Text&, std::uint32_t) override { return unused(); }
  std::uint16_t GetSystemDefaultUILanguage() override { return unused(); }
  bool GetUserNameA(Text&, std::uint32_t&) override { return unused() != 0; }
  bool LookupAccountNameA(TextView, std::uint32_t, Text&, std::uint32_t&) override {
    return unused() != 0;
  }

  bool asked(const std::string& what) const {
    return std::find(log.begin(), log.end(), what) != log.end();
  }

 private:
  static std::uint8_t unused() {
    ADD_FAILURE() << "asked for something that tells no system";
    return 0;
  }
};

std::string nameOf(FakeSystem& system) { return toUtf8(GetOSName(system)); }

// ---- the tables of tests/data as conditions

using Fits = std::function<bool(const FakeSystem&)>;

std::uint32_t parse(const std::string& digits, int base = 10) {
  std::uint32_t value = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value, base);
  if (stop != end || error != std::errc()) throw std::runtime_error("no number: " + digits);
  return value;
}

/// "7", "7 and above", "above 7", "below 7", "7 to 9"; "-" and "*" fit every number.
std::function<bool(std::uint32_t)> rangeOf(const std::string& cell) {
  const auto behind = [&](const std::string& word) { return parse(cell.substr(word.size())); };
  if (cell == "-" || cell == "*") return [](std::uint32_t) { return true; };
  if (cell.starts_with("above ")) {
    return [bound = behind("above ")](std::uint32_t number) { return number > bound; };
  }
  if (cell.starts_with("below ")) {
    return [bound = behind("below ")](std::uint32_t number) { return number < bound; };
  }
  const std::size_t end = cell.find(' ');
  const std::uint32_t first = parse(cell.substr(0, end));
  if (end == std::string::npos) return [first](std::uint32_t number) { return number == first; };
  const std::string rest = cell.substr(end);
  if (rest == " and above") return [first](std::uint32_t number) { return number >= first; };
  if (!rest.starts_with(" to ")) throw std::runtime_error("no range: " + cell);
  return [first, last = parse(rest.substr(4))](std::uint32_t number) {
    return number >= first && number <= last;
  };
}

/// A number, "not 7", "-" or "*".
std::function<bool(std::uint32_t)> equalTo(const std::string& cell) {
  if (!cell.starts_with("not ")) return rangeOf(cell);
  return [other = parse(cell.substr(4))](std::uint32_t number) { return number != other; };
}

Fits testOf(const std::string& cell) {
  if (cell == "-") return [](const FakeSystem&) { return true; };
  if (cell == "product is 1") {
    return [](const FakeSystem& system) { return system.productType == 1; };
  }
  if (cell == "product is 1 and architecture is 9") {
    return [](const FakeSystem& system) {
      return system.productType == 1 && system.architecture == 9;
    };
  }
  if (cell.starts_with("metric(")) {
    const auto index = static_cast<std::int32_t>(parse(cell.substr(7, cell.size() - 8)));
    return [index](const FakeSystem& system) { return system.metrics.count(index) == 1; };
  }
  if (cell.starts_with("suite has ")) {
    return [bit = parse(cell.substr(10), 16)](const FakeSystem& system) {
      return (system.suite & bit) != 0;
    };
  }
  if (!cell.starts_with("suite is ")) throw std::runtime_error("unknown test: " + cell);
  return
      [mask = parse(cell.substr(9), 16)](const FakeSystem& system) { return system.suite == mask; };
}

/// A table that is read from the top: the first row that fits a system decides.
class Decisions {
 public:
  void add(const Row& row, std::string result, Fits fits) {
    rows_.push_back({row.where(), std::move(result), std::move(fits)});
  }
  std::string operator()(const FakeSystem& system) {
    for (Decision& each : rows_) {
      if (!each.fits(system)) continue;
      each.used = true;
      return each.result;
    }
    return {};
  }
  /// Every row that has decided for no system yet.
  std::vector<std::string> unused() const {
    std::vector<std::string> places;
    for (const Decision& each : rows_) {
      if (!each.used) places.push_back(each.where);
    }
    return places;
  }

 private:
  struct Decision {
    std::string where;
    std::string result;
    Fits fits;
    bool used = false;
  };
  std::vector<Decision> rows_;
};

Decisions classTable() {
  Decisions table;
  for (const Row& each : Table::read("os_class.tsv")) {
    const auto platform = rangeOf(each.word("platform"));
    const auto major = rangeOf(each.word("major"));
    table.add(each, each.word("class"), [=](const FakeSystem& system) {
      return platform(system.platform) && major(system.major);
    });
  }
  return table;
}

Decisions nameTable() {
  Decisions table;
  for (const Row& each : Table::read("os_names.tsv")) {
    const auto platform = rangeOf(each.word("platform"));
    const auto major = rangeOf(each.word("major"));
    const auto minor = rangeOf(each.word("minor"));
    const auto build = rangeOf(each.word("build"));
    const Fits test = testOf(each.word("test"));
    table.add(each, each.quoted("name"), [=](const FakeSystem& system) {
      return platform(system.platform) && major(system.major) && minor(system.minor) &&
             build(system.build) && test(system);
    });
  }
  return table;
}

Decisions suffix2003Table() {
  Decisions table;
  for (const Row& each : Table::read("os_suffix_2003.tsv")) {
    const auto product = equalTo(each.word("product"));
    const auto architecture = equalTo(each.word("architecture"));
    const Fits suite = testOf(each.isNone("suite") ? "-" : "suite has " + each.word("suite"));
    table.add(each, each.quoted("suffix"), [=](const FakeSystem& system) {
      return product(system.productType) && architecture(system.architecture) && suite(system);
    });
  }
  return table;
}

Decisions productTable() {
  Decisions table;
  for (const Row& each : Table::read("os_product_suffix.tsv")) {
    table.add(each, each.quoted("suffix"),
              [code = equalTo(each.word("product_code"))](const FakeSystem& system) {
                return code(system.productCode);
              });
  }
  return table;
}

Decisions widthTable() {
  Decisions table;
  for (const Row& each : Table::read("os_width_suffix.tsv")) {
    table.add(each, each.quoted("suffix"),
              [architecture = equalTo(each.word("architecture"))](const FakeSystem& system) {
                return architecture(system.architecture);
              });
  }
  return table;
}

// ---- the class

TEST(GetOSClass, IsThatOfItsTableForEveryPlatformAndVersion) {
  Decisions table = classTable();
  FakeSystem system;
  for (system.platform = 0; system.platform <= 4; ++system.platform) {
    for (const std::uint32_t major : {0u, 1u, 3u, 4u, 5u, 6u, 7u, 8u, 10u, 11u, 0xFFFFFFFFu}) {
      system.major = major;
      std::uint8_t nt62 = 0;
      EXPECT_EQ(std::to_string(GetOSClass(system, nt62)), table(system))
          << system.platform << " " << major;
    }
  }
  EXPECT_EQ(table.unused(), std::vector<std::string>());
}

TEST(GetOSClass, SetsTheFlagOfVersion62AndLeavesItAloneOtherwise) {
  FakeSystem system;
  for (system.platform = 0; system.platform <= 3; ++system.platform) {
    for (system.major = 5; system.major <= 7; ++system.major) {
      for (system.minor = 0; system.minor <= 3; ++system.minor) {
        const bool is62 = system.platform == 2 && system.major == 6 && system.minor == 2;
        std::uint8_t nt62 = 0;
        GetOSClass(system, nt62);
        EXPECT_EQ(nt62, is62 ? 1 : 0);
        nt62 = 1;
        GetOSClass(system, nt62);
        EXPECT_EQ(nt62, 1);
      }
    }
  }
}

TEST(GetOSClass, IsZeroIfTheVersionCannotBeAsked) {
  FakeSystem system;
  system.minor = 2;
  system.failingForm = shortForm;
  std::uint8_t nt62 = 0;
  EXPECT_EQ(GetOSClass(system, nt62), 0);
  EXPECT_EQ(nt62, 0);
}

TEST(GetOSClass, AsksForTheShortRecordOnce) {
  FakeSystem system;
  std::uint8_t nt62 = 0;
  GetOSClass(system, nt62);
  EXPECT_EQ(system.log, std::vector<std::string>{"version 148"});
}

// ---- the name

/// The builds at and beside every boundary of the tables.
constexpr std::uint32_t builds[] = {0,    949,  950,        951,        1079,      1080, 1081,
                                    1997, 1998, 1999,       2181,       2182,      2183, 2222,
                                    2600, 7600, 0x040A03B6, 0x040A07CE, 0xFFFFFFFF};
constexpr std::uint16_t architectures[] = {x86, 5, itanium, x64};
constexpr std::uint8_t productTypes[] = {0, workstation, 2, server};
constexpr std::uint16_t suiteBits[] = {0x2, 0x80, 0x200, 0x400, 0x2000, 0x4000};
constexpr std::int32_t metricNumbers[] = {86, 87, 88, 89};

/// The mask of the bits whose places are set in a number.
std::uint16_t suiteOf(unsigned choice) {
  std::uint16_t mask = 0;
  for (std::size_t bit = 0; bit < std::size(suiteBits); ++bit) {
    if ((choice >> bit & 1) != 0) mask = static_cast<std::uint16_t>(mask | suiteBits[bit]);
  }
  return mask;
}

std::set<std::int32_t> metricsOf(unsigned choice) {
  std::set<std::int32_t> metrics;
  for (std::size_t bit = 0; bit < std::size(metricNumbers); ++bit) {
    if ((choice >> bit & 1) != 0) metrics.insert(metricNumbers[bit]);
  }
  return metrics;
}

class GetOSNameTables : public testing::Test {
 protected:
  std::string expected(const FakeSystem& system) {
    std::string name = names(system);
    if (system.platform != nt) return name;
    if (system.major == 5 && system.minor == 2) name += suffixes2003(system);
    if (system.major == 6) name += products(system) + widths(system);
    return name;
  }
  void compare(FakeSystem& system) {
    system.log.clear();
    ASSERT_EQ(nameOf(system), expected(system))
        << "platform " << system.platform << " version " << system.major << "." << system.minor
        << " build " << system.build << " suite " << system.suite << " product "
        << int{system.productType} << " code " << system.productCode << " architecture "
        << system.architecture << " metrics " << testing::PrintToString(system.metrics);
  }

  Decisions names = nameTable();
  Decisions suffixes2003 = suffix2003Table();
  Decisions products = productTable();
  Decisions widths = widthTable();
};

TEST_F(GetOSNameTables, AgreeOnEveryPlatformVersionAndBuild) {
  FakeSystem system;
  for (system.platform = 0; system.platform <= 4; ++system.platform) {
    for (system.major = 0; system.major <= 11; ++system.major) {
      for (const std::uint32_t minor : {0u, 1u, 2u, 3u, 9u, 10u, 11u, 89u, 90u, 91u}) {
        system.minor = minor;
        for (const std::uint32_t build : builds) {
          system.build = build;
          compare(system);
        }
      }
    }
  }
}

TEST_F(GetOSNameTables, AgreeOnEveryEditionOfVersion5) {
  FakeSystem system;
  system.major = 5;
  for (system.minor = 0; system.minor <= 3; ++system.minor) {
    for (const std::uint8_t type : productTypes) {
      system.productType = type;
      for (unsigned suites = 0; suites < 1u << std::size(suiteBits); ++suites) {
        system.suite = suiteOf(suites);
        for (unsigned metrics = 0; metrics < 1u << std::size(metricNumbers); ++metrics) {
          system.metrics = metricsOf(metrics);
          for (const std::uint16_t architecture : architectures) {
            system.architecture = architecture;
            compare(system);
          }
        }
      }
    }
  }
  EXPECT_EQ(suffixes2003.unused(), std::vector<std::string>());
}

TEST_F(GetOSNameTables, AgreeOnEveryEditionOfVersion6) {
  FakeSystem system;
  for (system.minor = 0; system.minor <= 4; ++system.minor) {
    for (const std::uint8_t type : productTypes) {
      system.productType = type;
      for (const std::uint16_t architecture : architectures) {
        system.architecture = architecture;
        for (system.productCode = 0; system.productCode <= 120; ++system.productCode) {
          compare(system);
        }
        system.productCode = 0xABCDABCD;
        compare(system);
      }
    }
  }
  EXPECT_EQ(products.unused(), std::vector<std::string>());
  EXPECT_EQ(widths.unused(), std::vector<std::string>());
}

// One suite or metric at a time is enough: rows that are reached so are reached.
TEST_F(GetOSNameTables, HaveNoRowThatNoSystemReaches) {
  FakeSystem system;
  for (system.platform = 0; system.platform <= 4; ++system.platform) {
    for (system.major = 3; system.major <= 7; ++system.major) {
      for (const std::uint32_t minor : {0u, 1u, 2u, 3u, 10u, 90u}) {
        system.minor = minor;
        for (const std::uint32_t build : builds) {
          system.build = build;
          names(system);
        }
        for (const std::uint8_t type : productTypes) {
          system.productType = type;
          for (unsigned suite = 0; suite <= std::size(suiteBits); ++suite) {
            system.suite = suiteOf(1u << suite >> 1);
            for (unsigned metric = 0; metric <= std::size(metricNumbers); ++metric) {
              system.metrics = metricsOf(1u << metric >> 1);
              names(system);
            }
            system.metrics.clear();
          }
        }
      }
    }
  }
  EXPECT_EQ(names.unused(), std::vector<std::string>());
}

TEST(GetOSName, IsToldByTheMetricsOfTheirTable) {
  const Table table = Table::read("os_metrics.tsv");
  EXPECT_EQ(table.size(), 4u);
  for (const Row& each : table) {
    FakeSystem system;
    system.major = 5;
    system.minor = each.number("number") == 89 ? 2 : 1;
    system.productType = server;
    system.architecture = x86;
    system.metrics = {each.number("number")};
    EXPECT_EQ(nameOf(system), each.quoted("name")) << each.where();
  }
}

struct Named {
  const char* name;
  std::function<void(FakeSystem&)> describe;
};

TEST(GetOSName, NamesKnownMachines) {
  const Named rows[] = {
      {"WinVistaUE64",
       [](FakeSystem& s) {
         s.minor = 0;
         s.productCode = 1;
       }},
      {"Win7UE64", [](FakeSystem& s) { s.productCode = 1; }},
      {"Win8UE32",
       [](FakeSystem& s) {
         s.minor = 2;
         s.productCode = 1;
         s.architecture = x86;
       }},
      {"WinServer2008SE64",
       [](FakeSystem& s) {
         s.productType = server;
         s.productCode = 7;
       }},
      {"WinServer2003",
       [](FakeSystem& s) {
         s.major = 5;
         s.minor = 2;
         s.productType = server;
         s.architecture = x86;
       }},
      {"WinServer2003DE",
       [](FakeSystem& s) {
         s.major = 5;
         s.minor = 2;
         s.productType = server;
         s.architecture = itanium;
         s.suite = 0x80;
       }},
      {"WinServer2003",
       [](FakeSystem& s) {
         s.major = 5;
         s.minor = 2;
         s.productType = server;
         s.suite = 0x2002;
       }},
      {"WinStorServer2003",
       [](FakeSystem& s) {
         s.major = 5;
         s.minor = 2;
         s.productType = server;
         s.suite = 0x2000;
       }},
      {"WinXP64SE64",
       [](FakeSystem& s) {
         s.major = 5;
         s.minor = 2;
       }},
      {"",
       [](FakeSystem& s) {
         s.platform = 1;
         s.major = 4;
         s.minor = 0;
         s.build = 949;
       }},
      {"Win95OSR2",
       [](FakeSystem& s) {
         s.platform = 1;
         s.major = 4;
         s.minor = 0;
         s.build = 0x040003B6;
       }},
      {"Win98SE",
       [](FakeSystem& s) {
         s.platform = 1;
         s.major = 4;
         s.minor = 10;
         s.build = 0x040A07CE;
       }},
  };
  for (const Named& each : rows) {
    FakeSystem system;
    each.describe(system);
    EXPECT_EQ(nameOf(system), each.name);
  }
}

TEST(GetOSName, EndsInTheServicePackOfTheFirstRecord) {
  FakeSystem system;
  system.major = 5;
  system.servicePack = u"Service Pack 3";
  EXPECT_EQ(nameOf(system), "WinXPProfService Pack 3");
  system.platform = 3;
  EXPECT_EQ(nameOf(system), "WinCEService Pack 3");
}

TEST(GetOSName, CutsTheServicePackAtItsFirstNul) {
  FakeSystem system;
  system.platform = 0;
  system.servicePack = Text(u"SP\0rest", 7);
  EXPECT_EQ(nameOf(system), "Win3.1SP");
  system.servicePack = Text(u"\0rest", 5);
  EXPECT_EQ(nameOf(system), "Win3.1");
  system.servicePack = Text(128, u'x');
  EXPECT_EQ(nameOf(system), "Win3.1" + std::string(128, 'x'));
}

TEST(GetOSName, IsTheServicePackAloneForAVersionThatItDoesNotKnow) {
  FakeSystem system;
  system.major = 10;
  EXPECT_EQ(nameOf(system), "");
  system.servicePack = u"Service Pack 1";
  EXPECT_EQ(nameOf(system), "Service Pack 1");
  std::uint8_t nt62 = 0;
  EXPECT_EQ(GetOSClass(system, nt62), 3);
}

TEST(GetOSName, AsksTheNativeSystemOnlyUnderEmulation) {
  for (const std::uint32_t major : {5u, 6u}) {
    FakeSystem system;
    system.major = major;
    system.minor = 2;
    EXPECT_TRUE(nameOf(system).ends_with("64"));
    EXPECT_TRUE(system.asked("system"));
    EXPECT_FALSE(system.asked("native"));
    system.log.clear();
    system.emulated = true;
    EXPECT_TRUE(nameOf(system).ends_with("64"));
    EXPECT_TRUE(system.asked("native"));
    EXPECT_FALSE(system.asked("system"));
  }
}

TEST(GetOSName, AsksForRecordsOfTheRightForm) {
  FakeSystem system;
  nameOf(system);
  EXPECT_EQ(system.log[0], "version 148");
  EXPECT_EQ(system.log[1], "version 156");
  system.log.clear();
  system.major = 4;
  nameOf(system);
  EXPECT_EQ(system.log, std::vector<std::string>{"version 148"});
}

TEST(GetOSName, CallsNewerServicesOnlyWhereItNeedsThem) {
  FakeSystem system;
  system.major = 5;
  for (const std::uint32_t minor : {0u, 1u, 3u}) {
    system.minor = minor;
    nameOf(system);
  }
  EXPECT_FALSE(system.asked("wow64"));
  system.minor = 2;
  nameOf(system);
  EXPECT_TRUE(system.asked("wow64"));
  EXPECT_FALSE(system.asked("product"));
}

TEST(GetOSName, TakesAFailingProductQueryForAnUnknownEdition) {
  FakeSystem system;
  system.productCode = 1;
  system.productFails = true;
  EXPECT_EQ(nameOf(system), "Win764");
}

TEST(GetOSName, RaisesErrorMinusOneIfTheVersionCannotBeAsked) {
  FakeSystem system;
  system.failingForm = shortForm;
  EXPECT_EQ(raisedBy([&] { GetOSName(system); }), -1);
  system.failingForm = extendedForm;
  for (const std::uint32_t major : {5u, 6u}) {
    system.major = major;
    EXPECT_EQ(raisedBy([&] { GetOSName(system); }), -1) << major;
  }
  system.major = 4;
  EXPECT_EQ(raisedBy([&] { GetOSName(system); }), 0);
}

TEST(GetOSName, RaisesErrorMinusOneIfTheEmulationCannotBeAsked) {
  FakeSystem system;
  system.wow64Fails = true;
  EXPECT_EQ(raisedBy([&] { GetOSName(system); }), -1);
  system.major = 5;
  system.minor = 2;
  EXPECT_EQ(raisedBy([&] { GetOSName(system); }), -1);
  system.minor = 1;
  EXPECT_EQ(raisedBy([&] { GetOSName(system); }), 0);
}

}  // namespace
}  // namespace zev
