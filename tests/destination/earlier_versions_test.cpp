#include "destination/earlier_versions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "destination/expected_boxes.h"
#include "simulated/put_text.h"
#include "support/table.h"

namespace zev {
namespace {

using Boxes = std::vector<std::string>;
using test::Row;
using test::Table;

/// How an older generation stands to the destination.
enum class Record { None, Gone, Elsewhere, Equal, EqualButCase };
constexpr Record allRecords[] = {Record::None, Record::Gone, Record::Elsewhere, Record::Equal,
                                 Record::EqualButCase};

constexpr TextView destination = u"C:\\Recorder";
const std::string version4Box =
    told(u"ZEV Install", 48,
         u"Version 4 of ZEV Screen Recorder is installed in this folder. Please select another "
         u"directory to install the new version.");
const std::string uninstallBox =
    told(u"ZEV Install", 292,
         u"A previous version of ZEV Screen Recorder is installed in this folder.\r\n\r\nPlease "
         u"first uninstall the previous version or select another directory to install the new "
         u"version.\r\n\r\nWould you like to uninstall the previous version now?");

class EarlierVersionsTest : public OnThePage, public testing::Test {
 protected:
  using Records = std::array<Record, 3>;  ///< oldest first

  EarlierVersionsTest() { machine.disks().putDirectory(destination); }

  static Text directoryOf(std::size_t place, Record record) {
    switch (record) {
      case Record::Gone:
        return join(u"C:\\Gone ", decimal(static_cast<int>(place)));
      case Record::Elsewhere:
        return join(u"C:\\Elsewhere ", decimal(static_cast<int>(place)));
      case Record::EqualButCase:
        return lowerCase(destination);
      default:
        return Text(record == Record::Equal ? destination : TextView());
    }
  }

  void lay(const Records& records) {
    for (std::size_t place = 0; place < records.size(); ++place) {
      const Text directory = directoryOf(place, records[place]);
      const Text key = generations.rows()[place].text("key");
      machine.registry().removeKey(HKEY_LOCAL_MACHINE, key);
      if (!directory.empty()) record(key, directory);
      if (records[place] == Record::Elsewhere) machine.disks().putDirectory(directory);
    }
  }

  /// True if the destination may be used.
  bool accepted() {
    globals().gInstallDir = destination;
    std::int16_t ok = 7;
    EarlierVersions(*program, *phrases, *registry, wizard).CheckEarlierVersions(ok);
    EXPECT_TRUE(ok == 0 || ok == -1);
    return ok == -1;
  }

  /// What was to be started since the last call, in a normal window with the focus.
  std::vector<Text> started() {
    std::vector<Text> fresh;
    for (const auto& all = machine.records().shell; seen_ < all.size(); ++seen_) {
      EXPECT_EQ(all[seen_].style, 1) << toUtf8(all[seen_].what);
      fresh.push_back(all[seen_].what);
    }
    return fresh;
  }

  Text commandOf(std::size_t place, Record record) {
    return join(u"\"", directoryOf(place, record), u"\\",
                generations.rows()[place].text("uninstaller"), u"\"");
  }

  /// Each combination of records with each answer.
  void tryAll(BoxAnswer answer);
  void expectOutcome(const Records& records, BoxAnswer answer);

  Table generations = Table::read("old_generations.tsv");

 private:
  std::size_t seen_ = 0;
};

bool counts(Record record) { return record != Record::None && record != Record::Gone; }

void EarlierVersionsTest::expectOutcome(const Records& records, BoxAnswer answer) {
  const bool taken = std::find(records.begin(), records.end(), Record::Equal) != records.end();
  const bool version4 = counts(records[2]);
  person.answers = {answer};
  wizard.browsers = 0;
  EXPECT_EQ(accepted(), !taken);
  EXPECT_EQ(boxes(), !taken ? Boxes() : Boxes{version4 ? version4Box : uninstallBox});
  EXPECT_EQ(wizard.browsers, taken && version4 ? 1 : 0);
  std::vector<Text> commands;
  if (taken && !version4 && answer == BoxAnswer::Yes) {
    const std::size_t newest = counts(records[1]) ? 1 : 0;
    commands.push_back(commandOf(newest, records[newest]));
  }
  EXPECT_EQ(started(), commands);
}

void EarlierVersionsTest::tryAll(BoxAnswer answer) {
  for (const Record first : allRecords) {
    for (const Record second : allRecords) {
      for (const Record third : allRecords) {
        SCOPED_TRACE(testing::Message() << static_cast<int>(first) << static_cast<int>(second)
                                        << static_cast<int>(third));
        lay({first, second, third});
        expectOutcome({first, second, third}, answer);
      }
    }
  }
}

TEST_F(EarlierVersionsTest, AreToldInEveryCombinationAndUninstalledOnYes) {
  tryAll(BoxAnswer::Yes);
}

TEST_F(EarlierVersionsTest, AreToldInEveryCombinationAndLeftOnNo) { tryAll(BoxAnswer::No); }

TEST_F(EarlierVersionsTest, AreReadFromTheRegistryOnEveryClassOfMachine) {
  lay({Record::None, Record::Equal, Record::None});
  for (std::int32_t each = 0; each <= profileClass; ++each) {
    globals().gOSClass = each;
    EXPECT_FALSE(accepted()) << each;
  }
}

TEST_F(EarlierVersionsTest, AreComparedWithoutTheBlanksAroundThem) {
  person.answers = {BoxAnswer::Yes};
  record(u"Software\\Marlotech\\ZEV", join(u"  ", destination, u"  "));
  EXPECT_FALSE(accepted());
  EXPECT_EQ(started(), std::vector<Text>{u"\"C:\\Recorder\\Uninstall ZEV.exe\""});
}

TEST_F(EarlierVersionsTest, AreNotTouched) {
  lay({Record::Equal, Record::Gone, Record::Elsewhere});
  accepted();
  for (const Row& each : generations) {
    EXPECT_EQ(machine.registry().find(HKEY_LOCAL_MACHINE, each.text("key"))->values.size(), 1u)
        << each.where();
  }
  EXPECT_EQ(machine.calls("RegSetValueExA"), 0u);
}

TEST_F(EarlierVersionsTest, AreStartedInANormalWindowWithoutAWait) {
  lay({Record::Equal, Record::None, Record::None});
  putText(machine.disks(), u"C:\\Recorder\\Uninstall ZEV.exe", "x");
  person.answers = {BoxAnswer::Yes};
  EXPECT_FALSE(accepted());
  EXPECT_EQ(started().size(), 1u);
  EXPECT_EQ(machine.calls("WaitForSingleObject"), 0u);
}

TEST_F(EarlierVersionsTest, AreSilentAboutAnUninstallerThatCannotBeStarted) {
  lay({Record::Equal, Record::None, Record::None});
  machine.setFaults({fault("Shell", u"", simulated::Fault::Effect::Raise, 53)});
  person.answers = {BoxAnswer::Yes};
  EXPECT_FALSE(accepted());
  EXPECT_EQ(boxes(), Boxes{uninstallBox});
}

TEST_F(EarlierVersionsTest, GiveAnErrorOfTheirOwnToTheCheck) {
  lay({Record::None, Record::Elsewhere, Record::None});
  machine.setFaults({fault("Dir", u"Elsewhere", simulated::Fault::Effect::Raise, 52)});
  EXPECT_FALSE(check(destination));
  EXPECT_EQ(boxes(), Boxes{told(u"ZEV", 48, u"Error in old version check!")});
}

/// The check makes the directory first, and the earlier versions come last.
TEST_F(EarlierVersionsTest, AreTheLastOfTheCheck) {
  lay({Record::None, Record::None, Record::Elsewhere});
  EXPECT_TRUE(check(u"C:\\one\\two"));
  EXPECT_FALSE(check(u"C:\\Elsewhere 2"));
  EXPECT_EQ(boxes(), Boxes{version4Box});
  EXPECT_EQ(wizard.browsers, 1);
}

}  // namespace
}  // namespace zev
