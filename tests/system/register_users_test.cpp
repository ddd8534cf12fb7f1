#include "system/register_users.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>

#include "runtime/error.h"
#include "simulated/put_text.h"
#include "system/watched_machine.h"

namespace zev {
namespace {

using simulated::Denial;
using simulated::Fault;
using simulated::FileSettings;
using test::Row;
using test::Table;
using Lines = std::vector<std::string>;
/// Paths, or names of values, and what is in them.
using Contents = std::map<std::string, std::string>;

constexpr std::uint32_t hiddenReadOnly = 1 | 2;

std::string profileOf(const std::string& user) { return "C:\\Users\\" + user; }
std::string localOf(const std::string& user) { return profileOf(user) + "\\AppData\\Local"; }
std::string productOf(const std::string& user) { return localOf(user) + "\\Tavorns\\ZEV5"; }
std::string line(std::int32_t number) { return std::to_string(number) + "\r\n"; }

class UsersOnAMachine : public WatchedMachine {
 public:
  UsersOnAMachine() {
    globals().gOSClass = 4;
    globals().gProductVersion = 21;
    globals().gUserData = fromUtf8(productOf("bob"));
    program->form1.Combo1.setListIndex(selected);
  }
  std::int16_t run() {
    std::int16_t result = 99;
    UserRegistration(*program, *phrases, *registry, report).RegisterUsers(result);
    return result;
  }
  void folder(const std::string& path) { machine.disks().putDirectory(fromUtf8(path)); }
  void file(const std::string& path, const std::string& text) {
    putText(machine.disks(), fromUtf8(path), text);
  }
  void profile(const std::string& user) { folder(localOf(user)); }
  void lay(const std::string& path, const FileSettings& settings) {
    machine.disks().put(fromUtf8(path), settings);
  }
  void value(const std::string& user, const std::string& name, const std::string& text) {
    file(productOf(user) + "\\" + name, text);
  }
  std::string valueFile(const std::string& user, const std::string& name) {
    return textOf(fromUtf8(productOf(user) + "\\" + name));
  }
  bool there(const std::string& path) { return machine.disks().exists(fromUtf8(path)); }
  std::uint32_t attributesOf(const std::string& path) {
    return machine.disks().find(fromUtf8(path))->attributes;
  }

  /// Everything below a folder: folders as "", files with their texts.
  Contents below(const std::string& folderPath) {
    Contents found;
    const auto names = machine.disks().names(fromUtf8(folderPath));
    if (!names) return found;
    for (const Text& name : *names) {
      const std::string path = folderPath + "\\" + toUtf8(name);
      const bool isFolder = machine.disks().names(fromUtf8(path)).has_value();
      found[path] = isFolder ? "" : textOf(fromUtf8(path));
      if (isFolder) found.merge(below(path));
    }
    return found;
  }
  Lines served() { return trace({"Status"}); }
  static std::string registering(const std::string& user) {
    return "Status | Registering user : " + user;
  }
  void expectPutBack() {
    EXPECT_EQ(globals().gUserData, fromUtf8(productOf("bob")));
    EXPECT_EQ(globals().gUserDataAlt, u"");
  }

  /// What a row of the table writes.
  std::string written(const Row& row) const {
    if (row.is("type", "text")) return filled(row.quoted("written"));
    return row.is("written", "{Combo1.ListIndex}") ? std::to_string(selected)
                                                   : std::to_string(row.number("written"));
  }

  static constexpr std::int32_t selected = 2;
  Table table = Table::read("user_settings.tsv");
};

class OtherUsers : public UsersOnAMachine, public testing::Test {};

// ---- the settings

/// Whether a row of the table is written into a folder that holds these values.
bool applies(const Row& row, const Contents& values) {
  const std::string& condition = row.word("condition");
  const auto number = [&](const char* name, std::int32_t otherwise) {
    const auto found = values.find(name);
    return found == values.end() ? otherwise : std::stoi(found->second);
  };
  const std::int32_t version = number("Version", -99);
  if (condition == "always" || condition == "Combo1.ListIndex above -1") return true;
  if (condition == "dwKFE is 0 or absent") return number("dwKFE", 0) == 0;
  if (condition == "Version present and below 17") return version != -99 && version < 17;
  if (condition == "Version present and below 16, AutoCodec absent") {
    return version != -99 && version < 16 && values.count("AutoCodec") == 0;
  }
  throw std::logic_error(row.where() + ": unknown condition " + condition);
}

TEST_F(OtherUsers, SettingsAreWrittenInTheOrderOfTheirTable) {
  const Contents before[] = {
      {},
      {{"Version", line(15)}},
      {{"Version", line(15)}, {"AutoCodec", line(4)}},
      {{"Version", line(16)}},
      {{"Version", line(17)}},
      {{"Version", line(21)}, {"dwKFE", line(7)}},
      {{"dwKFE", line(0)}},
      {{"Version", line(-99)}},
      {{"Version", line(0)}},
  };
  for (const Contents& values : before) {
    machine.disks().remove(u"C:\\Users\\alice");
    profile("alice");
    for (const auto& [name, text] : values) value("alice", name, text);
    const std::size_t already = trace({"OpenOutput"}).size();
    run();
    Lines expected = {"deneme_sil"};
    for (const Row& row : table) {
      if (!applies(row, values)) continue;
      expected.push_back(row.word("value"));
      EXPECT_EQ(valueFile("alice", row.word("value")), written(row) + "\r\n") << row.where();
    }
    const Lines opened = trace({"OpenOutput"});
    Lines found;
    for (std::size_t each = already; each < opened.size(); ++each) {
      found.push_back(opened[each].substr(opened[each].rfind('\\') + 1));
    }
    EXPECT_EQ(found, expected);
  }
}

TEST_F(OtherUsers, AProfileIsToldOfBehindItsFoldersAndBeforeItsSettings) {
  profile("alice");
  run();
  const std::string local = "c:\\users\\alice\\AppData\\Local";
  const std::string product = local + "\\Tavorns\\ZEV5";
  Lines expected = {"OpenOutput | 1 | " + local + "\\deneme_sil",
                    "Kill | " + local + "\\deneme_sil", "MkDir | " + local + "\\Tavorns",
                    "MkDir | " + product, registering("alice")};
  for (const Row& row : table) {
    if (applies(row, {}))
      expected.push_back("OpenOutput | 1 | " + product + "\\" + row.word("value"));
  }
  EXPECT_EQ(trace({"OpenOutput", "Kill", "MkDir", "Status"}), expected);
}

/// Somebody tries to take folders away when a profile is told of.
class TriesToRemove final : public RunReport {
 public:
  explicit TriesToRemove(FileSystem& files) : files_(files) {}
  void setRunStep(std::int32_t) override {}
  void showStatus(TextView) override {
    for (const std::string& each : folders)
      answers.push_back(files_.RemoveDirectoryA(fromUtf8(each)));
  }

  std::vector<std::string> folders;
  std::vector<SystemError> answers;

 private:
  FileSystem& files_;
};

TEST_F(OtherUsers, NobodyTakesAFolderAwayWhileItsProfileIsServed) {
  profile("alice");
  const std::string product = productOf("alice");
  TriesToRemove somebody(machine.otherFileSystem());
  somebody.folders = {profileOf("alice"), profileOf("alice") + "\\AppData", localOf("alice"),
                      localOf("alice") + "\\Tavorns", product};
  std::int16_t result = 0;
  UserRegistration(*program, *phrases, *registry, somebody).RegisterUsers(result);
  EXPECT_EQ(somebody.answers, std::vector<SystemError>(5, system_error::sharingViolation));
  EXPECT_EQ(valueFile("alice", "Version"), line(21));
  EXPECT_EQ(machine.openHandles().files, 0u);
}

TEST_F(OtherUsers, WithoutASelectedLanguageNoneIsWritten) {
  program->form1.Combo1.setListIndex(-1);
  profile("alice");
  run();
  EXPECT_EQ(valueFile("alice", "Language"), "(no file)");
  EXPECT_EQ(valueFile("alice", "CapSpeed"), "1\r\n");
}

TEST_F(OtherUsers, NothingGoesToTheRegistry) {
  profile("alice");
  run();
  EXPECT_EQ(machine.calls("RegCreateKeyA"), 0u);
  EXPECT_EQ(machine.calls("RegSetValueExA"), 0u);
}

TEST_F(OtherUsers, TheRunningUsersFoldersHaveNoPartInTheWalk) {
  globals().gUserDataAlt = fromUtf8(productOf("bob.PC"));
  value("bob", "Version", line(21));
  value("bob.PC", "Version", line(21));
  value("alice", "Version", line(15));
  machine.settings().system.user = u"bob.PC";
  const Contents second = below(localOf("bob.PC"));
  run();
  EXPECT_EQ(valueFile("alice", "InterfaceStyle"), "1\r\n");
  EXPECT_EQ(below(localOf("bob.PC")), second);
  EXPECT_EQ(globals().gUserData, fromUtf8(productOf("bob")));
  EXPECT_EQ(globals().gUserDataAlt, fromUtf8(productOf("bob.PC")));
}

TEST_F(OtherUsers, FoldersArePutBackTrimmed) {
  globals().gUserData += u"  ";
  globals().gUserDataAlt = u" C:\\x ";
  profile("alice");
  run();
  EXPECT_EQ(globals().gUserData, fromUtf8(productOf("bob")));
  EXPECT_EQ(globals().gUserDataAlt, u"C:\\x");
}

// ---- what there is to walk

TEST_F(OtherUsers, ResultIsTrueOnlyWhereNothingIsThere) {
  EXPECT_EQ(run(), 0);
  machine.settings().folders.localAppData = std::nullopt;
  EXPECT_EQ(run(), -1);
  machine.settings().folders.localAppData = u"C:\\nowhere";
  EXPECT_EQ(run(), -1);
  folder("C:\\Empty");
  machine.settings().folders.localAppData = u"C:\\Empty";
  EXPECT_EQ(run(), -1);
  file("C:\\Empty\\x", "");
  EXPECT_EQ(run(), 0);
}

TEST_F(OtherUsers, AnEmptyBaseFolderWalksNothing) {
  folder("C:\\x\\AppData\\Local");
  machine.settings().folders.localAppData = std::nullopt;
  EXPECT_EQ(run(), -1);
  EXPECT_EQ(machine.calls("Dir"), 0u);
  EXPECT_EQ(machine.calls("GetUserNameA"), 0u);
  EXPECT_TRUE(served().empty());
}

TEST_F(OtherUsers, APassOfTheMessageLoopFollowsEachEntry) {
  profile("alice");
  file("C:\\Users\\desktop.ini", "x");
  run();
  // "alice", "bob" and "desktop.ini", and the two that stand for the folder and the one above it.
  EXPECT_EQ(machine.calls("DoEvents"), 5u);
}

TEST_F(OtherUsers, ProfilesAreSoughtOnTheSystemsDriveAlone) {
  machine.disks().setDrive(u'D', {});
  folder("D:\\Users\\alice\\AppData\\Local");
  machine.settings().folders.localAppData = u"D:\\Users\\bob\\AppData\\Local";
  folder("D:\\Users\\bob\\AppData\\Local");
  run();
  EXPECT_FALSE(there("D:\\Users\\alice\\AppData\\Local\\Tavorns"));
  machine.settings().folders.system = u"D:\\Windows\\system32";
  run();
  EXPECT_TRUE(there("D:\\Users\\alice\\AppData\\Local\\Tavorns\\ZEV5\\Version"));
}

// ---- failures

TEST_F(OtherUsers, ErrorsBeforeTheWalkReachTheCaller) {
  profile("alice");
  for (const char* call : {"GetSystemDirectoryA", "SHGetKnownFolderPath", "Dir", "GetUserNameA"}) {
    machine.setFaults({{.call = call, .effect = Fault::Effect::Raise, .code = 5}});
    EXPECT_THROW(run(), RuntimeError) << call;
    expectPutBack();
  }
  EXPECT_FALSE(there(localOf("alice") + "\\Tavorns"));
}

struct WalkFault {
  const char* call;
  TextView match;
  Fault::Effect effect;
  bool served;  ///< whether the profile gets its status line
};

constexpr WalkFault walkFaults[] = {
    {"Dir", u"alice\\AppData\\Local", Fault::Effect::Raise, false},
    {"GetAttr", u"alice", Fault::Effect::Raise, true},
    {"OpenOutput", u"alice\\AppData\\Local\\deneme_sil", Fault::Effect::Raise, false},
    {"Print", u"alice\\AppData\\Local\\deneme_sil", Fault::Effect::Raise, false},
    {"Kill", u"alice\\AppData\\Local\\deneme_sil", Fault::Effect::Raise, true},
    {"MkDir", u"alice", Fault::Effect::Raise, false},
    {"MkDir", u"alice", Fault::Effect::Ignore, false},
    {"MkDir", u"alice\\AppData\\Local\\Tavorns\\ZEV5", Fault::Effect::Raise, true},
    {"OpenOutput", u"alice\\AppData\\Local\\Tavorns\\ZEV5\\Version", Fault::Effect::Raise, true},
};

TEST_F(OtherUsers, AProfileThatFailsLeavesTheNextAlone) {
  for (const WalkFault& each : walkFaults) {
    for (const TextView user : {TextView(u"alice"), TextView(u"carol")}) {
      machine.disks().remove(join(u"C:\\Users\\", user));
      machine.disks().putDirectory(join(u"C:\\Users\\", user, u"\\AppData\\Local"));
    }
    machine.setFaults(
        {{.call = each.call, .match = Text(each.match), .effect = each.effect, .code = 70}});
    const std::size_t before = served().size();
    EXPECT_EQ(run(), 0);
    const Lines all = served();
    const Lines now(all.begin() + static_cast<std::ptrdiff_t>(before), all.end());
    const Lines expected = each.served ? Lines{registering("alice"), registering("carol")}
                                       : Lines{registering("carol")};
    EXPECT_EQ(now, expected) << each.call << " " << toUtf8(each.match);
    EXPECT_EQ(valueFile("carol", "Language"), "2\r\n") << each.call;
    expectPutBack();
  }
}

TEST_F(OtherUsers, BoxesOfTheValueFilesAreShown) {
  value("alice", "Version", "twelve\r\n");
  value("alice", "dwKFE", "many\r\n");
  run();
  ASSERT_EQ(person.boxes.size(), 2u);
  for (const auto& box : person.boxes) EXPECT_EQ(box.text, u"Error : 5-13 Type mismatch");
  EXPECT_EQ(valueFile("alice", "AutoCodec"), "0\r\n");
  EXPECT_EQ(valueFile("alice", "InterfaceStyle"), "1\r\n");
  EXPECT_EQ(valueFile("alice", "dwKFE"), "15\r\n");
}

/// Where even the box of a failure fails, the error leaves the settings and meets the walk, which
/// goes on behind the one value that it cost.
TEST_F(OtherUsers, AnErrorCostsTheOneValueThatItCameFrom) {
  for (const Row& lost : table) {
    machine.disks().remove(u"C:\\Users\\alice");
    value("alice", "Version", line(15));
    const std::string path = productOf("alice") + "\\" + lost.word("value");
    const std::string before = lost.is("value", "Version") ? line(15) : "(no file)";
    machine.setFaults({{.call = "OpenOutput",
                        .match = fromUtf8(path.substr(2)),
                        .effect = Fault::Effect::Raise,
                        .code = 70},
                       {.call = "MsgBox", .effect = Fault::Effect::Raise, .code = 7}});
    EXPECT_EQ(run(), 0) << lost.where();
    for (const Row& row : table) {
      EXPECT_EQ(valueFile("alice", row.word("value")),
                &row == &lost ? before : written(row) + "\r\n")
          << row.where() << " without " << lost.word("value");
    }
    expectPutBack();
  }
}

// ---- who is the running user

TEST_F(OtherUsers, WithoutANameTheRunningUserIsWalkedToo) {
  machine.setFaults({{.call = "GetUserNameA", .effect = Fault::Effect::Error, .code = 5}});
  run();
  EXPECT_EQ(served(), Lines{registering("bob")});
  EXPECT_EQ(valueFile("bob", "Version"), "21\r\n");
}

TEST_F(OtherUsers, TheNameOfTheRunningUserCountsExactly) {
  machine.settings().system.user = u"Bob";
  run();
  EXPECT_EQ(served(), Lines{registering("bob")});
}

TEST_F(OtherUsers, AreToldInTheLanguageInForce) {
  globals().gLanguage = language::German;
  phrases->LoadPhrases();
  profile("alice");
  run();
  EXPECT_EQ(served(), Lines{"Status | Benutzer wird registriert : alice"});
}

// ---- fifty profiles

enum class Kind {
  Fresh,           ///< a local folder and nothing else
  Installed,       ///< the product's folder with values
  HiddenReadOnly,  ///< the same, the profile and its local folder hidden and read-only
  Locked,          ///< hidden and read-only, and it stays so
  Unwritable,      ///< no file can be made in the local folder
  PlainFile,       ///< no folder at all
  NoLocalFolder,   ///< a folder of the system
};
constexpr int kinds = 7;
constexpr int profiles = 50;

struct Profile {
  std::string user;
  Kind kind;
  Contents values;  ///< of the product's folder

  bool hasValues() const {
    return kind != Kind::Fresh && kind != Kind::PlainFile && kind != Kind::NoLocalFolder;
  }
  bool served() const {
    return kind != Kind::Unwritable && kind != Kind::PlainFile && kind != Kind::NoLocalFolder;
  }
};

/// Every kind with every version, mixed with the other values.
Profile profileNumber(int number) {
  constexpr const char* versions[] = {"", "15", "16", "17", "21"};
  constexpr const char* keyFrames[] = {"", "0", "7"};
  Profile made;
  made.user = "user" + std::to_string(100 + number);
  made.kind = static_cast<Kind>(number % kinds);
  const auto put = [&](const char* name, const std::string& text) {
    if (!text.empty()) made.values[name] = text + "\r\n";
  };
  if (!made.hasValues()) return made;
  put("Version", versions[number / kinds % 5]);
  put("dwKFE", keyFrames[number % 3]);
  put("AutoCodec", number % 2 == 0 ? "" : "4");
  put("Dizin", number % 4 == 0 ? "" : "D:\\Elsewhere");
  put("IncCur", number % 5 == 0 ? "" : "0");
  put("Other", "kept");
  return made;
}

/// The profiles behind a first walk over them, which all cases look at.
class WalkedProfiles : public UsersOnAMachine {
 public:
  WalkedProfiles() {
    for (int number = 0; number < profiles; ++number) {
      all.push_back(profileNumber(number));
      layDown(all.back());
    }
    own = below(profileOf("bob"));
    for (const Profile& each : all) before[each.user] = below(profileOf(each.user));
    result = run();
    told = served();
    for (const Profile& each : all) values[each.user] = valuesOf(each.user);
  }
  void layDown(const Profile& each) {
    if (each.kind == Kind::PlainFile) return file(profileOf(each.user), "a plain file");
    folder(profileOf(each.user) + "\\AppData");
    if (each.kind == Kind::NoLocalFolder) return;
    profile(each.user);
    for (const auto& [name, text] : each.values) value(each.user, name, text);
    const bool marked = each.kind == Kind::HiddenReadOnly || each.kind == Kind::Locked;
    for (const std::string& path : {localOf(each.user), profileOf(each.user)}) {
      if (marked) {
        lay(path,
            {.directory = true, .attributes = hiddenReadOnly, .locked = each.kind == Kind::Locked});
      }
    }
    if (each.kind == Kind::Unwritable) {
      lay(localOf(each.user), {.directory = true, .deny = Denial{.create = true}});
    }
  }

  /// What the product's folder of a profile holds behind the walk, by the rule.
  Contents expected(const Profile& each) {
    Contents values = each.values;
    if (!each.served()) return values;
    for (const Row& row : table) {
      if (applies(row, each.values)) values[row.word("value")] = written(row) + "\r\n";
    }
    return values;
  }
  Contents valuesOf(const std::string& user) {
    Contents found;
    for (const auto& [path, text] : below(productOf(user))) {
      found[path.substr(path.rfind('\\') + 1)] = text;
    }
    return found;
  }

  std::vector<Profile> all;
  Contents own;                            ///< what the running user has, before the walk
  std::map<std::string, Contents> before;  ///< what the others have, by their names
  std::int16_t result = 0;
  Lines told;
  std::map<std::string, Contents> values;  ///< of the product's folders, behind the walk
};

class FiftyProfiles : public testing::Test {
 protected:
  static void SetUpTestSuite() { walked = std::make_unique<WalkedProfiles>(); }
  static void TearDownTestSuite() { walked.reset(); }

  static inline std::unique_ptr<WalkedProfiles> walked;
};

TEST_F(FiftyProfiles, EachGetsWhatItsStateAsksFor) {
  EXPECT_EQ(walked->result, 0);
  Lines names;
  for (const Profile& each : walked->all) {
    EXPECT_EQ(walked->values[each.user], walked->expected(each)) << each.user;
    EXPECT_FALSE(walked->there(localOf(each.user) + "\\deneme_sil")) << each.user;
    if (each.served()) {
      names.push_back(UsersOnAMachine::registering(each.user));
    } else {
      EXPECT_EQ(walked->below(profileOf(each.user)), walked->before[each.user]) << each.user;
    }
  }
  EXPECT_EQ(names.size(), 29u);
  EXPECT_EQ(walked->told, names);
  EXPECT_EQ(walked->below(profileOf("bob")), walked->own);
  EXPECT_TRUE(walked->person.boxes.empty());
  walked->expectPutBack();
}

TEST_F(FiftyProfiles, LoseTheirAttributesWhereTheyCan) {
  for (const Profile& each : walked->all) {
    if (each.kind != Kind::HiddenReadOnly && each.kind != Kind::Locked) continue;
    const std::uint32_t left = each.kind == Kind::Locked ? hiddenReadOnly : 0;
    for (const std::string& path : {profileOf(each.user), localOf(each.user)}) {
      EXPECT_EQ(walked->attributesOf(path) & hiddenReadOnly, left) << path;
    }
  }
}

TEST_F(FiftyProfiles, AreServedAgainByASecondWalkWithTheSameEnd) {
  const std::size_t already = walked->served().size();
  walked->run();
  for (const Profile& each : walked->all) {
    EXPECT_EQ(walked->valuesOf(each.user), walked->values[each.user]) << each.user;
  }
  EXPECT_EQ(walked->told.size(), 29u);
  EXPECT_EQ(walked->served().size(), already + 29);
}

}  // namespace
}  // namespace zev
