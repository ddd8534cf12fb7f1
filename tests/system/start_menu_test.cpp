#include "system/start_menu.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "runtime/error.h"
#include "simulated/put_text.h"
#include "system/watched_machine.h"

namespace zev {
namespace {

using simulated::Fault;
using test::Row;
using test::Table;
using Lines = std::vector<std::string>;

const std::string shared = "C:\\ProgramData\\Microsoft\\Windows\\Start Menu";
const std::string sharedGroup = shared + "\\ZEV Screen Recorder 6";
const std::string desktop = "C:\\Users\\bob\\Desktop";

/// A machine on which an install has laid its files, and what its tables say of the shortcuts.
class InstalledMachine : public WatchedMachine {
 public:
  InstalledMachine() {
    for (const TextView file :
         {TextView(u"ZEV6.chm"), TextView(u"Uninstall Screen Recorder 6.exe")}) {
      putText(machine.disks(), inInstall(file), "x");
    }
  }
  static Text inInstall(TextView file) { return join(install, u"\\", file); }
  void run() { StartMenu(*program, *phrases, report).makeShortcuts(); }

  /// Neither a shared Start Menu nor programs of the user's own.
  void takeStartMenuAway() {
    machine.disks().remove(u"C:\\ProgramData");
    machine.settings().folders.special[2] = std::nullopt;
  }
  Text ownPrograms() { return *machine.settings().folders.special.at(2); }

  bool present(const Row& row) {
    return row.isNone("gate") || machine.disks().exists(inInstall(row.text("gate")));
  }
  /// All that makes one shortcut, in its order.
  static Lines making(const Row& row, const std::string& folder) {
    Lines lines = {"CreateShortcut | " + folder + "\\" + row.quoted("file"),
                   "TargetPath | " + filled(row.quoted("target")),
                   "Arguments | " + row.quoted("arguments")};
    if (!row.isNone("window_style")) {
      lines.push_back("WindowStyle | " + std::to_string(row.number("window_style")));
    }
    lines.push_back("IconLocation | " + filled(row.quoted("icon")));
    lines.push_back("Description | " + row.quoted("description"));
    lines.push_back("WorkingDirectory | " + filled(row.quoted("working_directory")));
    lines.push_back("Save");
    return lines;
  }
  const Row& desktopRow() { return shortcuts.row("place", "desktop"); }
  /// The rows of the group in the order of their numbers.
  std::vector<const Row*> groupRows() {
    std::vector<const Row*> rows;
    for (const Row& row : shortcuts) {
      if (row.is("place", "group")) rows.push_back(&row);
    }
    std::sort(rows.begin(), rows.end(), [](const Row* one, const Row* other) {
      return one->number("order") < other->number("order");
    });
    return rows;
  }

  /// The whole work by the shell in the shared Start Menu.
  Lines shellWay() {
    Lines lines = {"Status | ZEV has been sucessfully installed into '" + toUtf8(install) +
                       "' directory.\r\n\r\nNow creating shortcuts...",
                   "RunStep | 162",
                   "GetSystemDirectoryA | 256",
                   "RunStep | 163",
                   "RunStep | 164",
                   "RunStep | 165",
                   "MkDir | " + sharedGroup,
                   "RunStep | 166",
                   "CreateObject | WScript.Shell"};
    const auto append = [&](const Lines& more) {
      lines.insert(lines.end(), more.begin(), more.end());
    };
    std::int32_t step = 167;
    for (const Row* row : groupRows()) {
      if (present(*row)) append(making(*row, sharedGroup));
      lines.push_back("RunStep | " + std::to_string(step++));
      if (row->number("order") != 1) continue;
      lines.emplace_back("SpecialFolders | Desktop");
      append(making(desktopRow(), desktop));
      lines.push_back("RunStep | " + std::to_string(step++));
    }
    lines.push_back("ShellExecuteA | 0 | " + sharedGroup + " |  | C: | 1");
    return lines;
  }

  /// The conversation of progman_conversation.tsv, its items those that are present.
  Lines conversation() {
    Lines lines;
    const auto& rows = talk.rows();
    for (std::size_t each = 0; each < rows.size(); ++each) {
      if (!rows[each].is("action", "items")) {
        say(lines, rows[each]);
        continue;
      }
      for (const Row& item : items) {
        if (!present(item)) continue;
        lines.push_back("LinkExecute | " + filled(item.quoted("command")));
        say(lines, rows[each + 1]);
        say(lines, rows[each + 2]);
      }
      each += 2;
    }
    return lines;
  }
  static void say(Lines& lines, const Row& row) {
    const std::string& action = row.word("action");
    if (action == "events") {
      lines.insert(lines.end(), static_cast<std::size_t>(row.number("value")), "DoEvents");
    } else if (action == "sleep") {
      lines.push_back("Sleep | " + std::to_string(row.number("value")));
    } else if (action == "LinkMode" || action == "LinkTimeout") {
      lines.push_back(action + " | " + std::to_string(row.number("value")));
    } else {
      lines.push_back(action + " | " + row.quoted("value"));
    }
  }

  Lines shellTrace() {
    return trace({"RunStep", "Status", "GetSystemDirectoryA", "MkDir", "CreateObject",
                  "CreateShortcut", "TargetPath", "Arguments", "WindowStyle", "IconLocation",
                  "Description", "WorkingDirectory", "Save", "SpecialFolders", "ShellExecuteA",
                  "LinkTopic", "LinkExecute", "Sleep", "DoEvents"});
  }
  Lines talkTrace() {
    return trace({"LinkTopic", "LinkItem", "LinkMode", "LinkTimeout", "LinkExecute", "DoEvents",
                  "Sleep", "ShellExecuteA", "SpecialFolders"});
  }
  Lines steps() { return trace({"RunStep"}); }

  Table shortcuts = Table::read("shortcuts.tsv");
  Table items = Table::read("progman_items.tsv");
  Table talk = Table::read("progman_conversation.tsv");
};

class StartMenus : public InstalledMachine, public testing::Test {};

TEST_F(StartMenus, TheShellMakesTheTableInItsOrder) {
  run();
  EXPECT_EQ(shellTrace(), shellWay());
  EXPECT_EQ(globals().gStartMenuDir, fromUtf8(sharedGroup));
}

TEST_F(StartMenus, EachShortcutHasThePropertiesOfItsRow) {
  run();
  for (const Row& row : shortcuts) {
    const std::string folder = row.is("place", "desktop") ? desktop : sharedGroup;
    const auto made = machine.shortcut(fromUtf8(folder + "\\" + row.quoted("file")));
    ASSERT_TRUE(made.has_value()) << row.where();
    EXPECT_EQ(toUtf8(made->TargetPath), filled(row.quoted("target"))) << row.where();
    EXPECT_EQ(toUtf8(made->Arguments), row.quoted("arguments")) << row.where();
    EXPECT_EQ(toUtf8(made->IconLocation), filled(row.quoted("icon"))) << row.where();
    EXPECT_EQ(toUtf8(made->Description), row.quoted("description")) << row.where();
    EXPECT_EQ(toUtf8(made->WorkingDirectory), filled(row.quoted("working_directory")))
        << row.where();
  }
}

TEST_F(StartMenus, AMissingFileLeavesItsShortcutOutAndKeepsItsStep) {
  for (const Row* gated : groupRows()) {
    if (gated->isNone("gate")) continue;
    machine.disks().remove(inInstall(gated->text("gate")));
    machine.disks().remove(fromUtf8(sharedGroup));
    const std::size_t before = shellTrace().size();
    run();
    Lines lines = shellTrace();
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(before));
    EXPECT_EQ(lines, shellWay()) << gated->where();
    EXPECT_FALSE(machine.shortcut(fromUtf8(sharedGroup + "\\" + gated->quoted("file"))));
  }
}

TEST_F(StartMenus, AHiddenHelpFileCounts) {
  files().SetFileAttributesA(inInstall(u"ZEV6.chm"), 1 | 2);
  run();
  EXPECT_EQ(shellTrace(), shellWay());
}

TEST_F(StartMenus, TheUserProgramNeverGetsAnEntryOnEitherWay) {
  putText(machine.disks(), inInstall(u"ZEVUser.exe"), "x");
  const Table never = Table::read("shortcuts_never_made.tsv");
  for (const std::int32_t osClass : {0, 1, 2, 3, 4}) {
    globals().gOSClass = osClass;
    run();
    for (const Row& row : never) {
      EXPECT_FALSE(machine.disks().exists(fromUtf8(sharedGroup + "\\" + row.quoted("file"))))
          << row.where();
    }
  }
  takeStartMenuAway();
  run();
  for (const Text& command : machine.records().dde) {
    EXPECT_EQ(command.find(u"ZEVUser"), Text::npos) << toUtf8(command);
  }
  EXPECT_EQ(machine.records().dde.size(), 6u);
}

TEST_F(StartMenus, ProgramManagerIsTalkedToAsItsTablesSay) {
  takeStartMenuAway();
  run();
  EXPECT_EQ(talkTrace(), conversation());
  EXPECT_EQ(steps(), (Lines{"RunStep | 162", "RunStep | 163", "RunStep | 164", "RunStep | 173"}));
  EXPECT_EQ(globals().gStartMenuDir, u"");
}

TEST_F(StartMenus, EachItemIsJoinedOfItsPieces) {
  for (const Row& row : items) {
    EXPECT_EQ(row.quoted("command"), "[additem(\"" + row.quoted("path") + "\"" +
                                         row.quoted("arguments") + "," + row.quoted("title") + ")]")
        << row.where();
  }
}

TEST_F(StartMenus, AMissingFileLeavesItsItemOut) {
  takeStartMenuAway();
  machine.disks().remove(inInstall(u"ZEV6.chm"));
  run();
  EXPECT_EQ(talkTrace(), conversation());
  machine.disks().remove(inInstall(u"Uninstall Screen Recorder 6.exe"));
  EXPECT_EQ(machine.records().dde.size(), 5u);
  run();
  EXPECT_EQ(machine.records().dde.size(), 9u);
}

/// Whatever step of the conversation fails, all others are taken, with their passes and pauses.
TEST_F(StartMenus, EveryStepOfTheConversationIsTriedWhateverFails) {
  for (const char* call :
       {"LinkTopic", "LinkItem", "LinkMode", "LinkTimeout", "LinkExecute", "Sleep", "DoEvents"}) {
    InstalledMachine fresh;
    fresh.takeStartMenuAway();
    fresh.machine.setFaults({{.call = call, .effect = Fault::Effect::Raise, .code = 282}});
    EXPECT_NO_THROW(fresh.run()) << call;
    EXPECT_EQ(fresh.talkTrace(), conversation()) << call;
  }
}

TEST_F(StartMenus, WithoutProgramManagerThePausesAreTheSame) {
  takeStartMenuAway();
  machine.settings().services.programManager = false;
  run();
  EXPECT_EQ(talkTrace(), conversation());
  EXPECT_TRUE(machine.records().dde.empty());
  EXPECT_EQ(machine.clock(), 500u + 500u + 5 * 200u);
}

// ---- the steps that the run is told

/// The lines of these rows of the table of steps.
Lines stepsOf(const std::vector<const char*>& whats) {
  static const Table table = Table::read("run_steps.tsv");
  Lines lines;
  for (const char* what : whats) {
    lines.push_back("RunStep | " + std::to_string(table.row("what", what).number("step")));
  }
  return lines;
}

TEST_F(StartMenus, TheShellTakesTheStepsOfTheTable) {
  run();
  EXPECT_EQ(steps(),
            stepsOf({"candidate formed", "candidate tested", "gStartMenuDir tested",
                     "gStartMenuDir extended and made", "WScript.Shell created", "Desktop shortcut",
                     "entry 2", "entry 3", "entry 4", "entry 5", "folder shown"}));
}

TEST_F(StartMenus, ProgramManagerTakesTheStepsOfTheTable) {
  takeStartMenuAway();
  run();
  EXPECT_EQ(steps(), stepsOf({"candidate formed", "candidate tested", "gStartMenuDir tested",
                              "Program Manager"}));
}

// ---- where the group goes

TEST_F(StartMenus, WithoutASharedFolderTheUsersOwnProgramsGetTheGroup) {
  machine.disks().remove(u"C:\\ProgramData");
  for (const TextView ending : {TextView(u""), TextView(u"\\")}) {
    const Text own(withoutTrailing(ownPrograms(), u'\\'));
    machine.settings().folders.special[2] = join(own, ending);
    run();
    EXPECT_EQ(globals().gStartMenuDir, join(own, u"\\ZEV Screen Recorder 6"));
    EXPECT_TRUE(machine.shortcut(join(globals().gStartMenuDir, u"\\Film Works.lnk")));
  }
  EXPECT_EQ(machine.calls("SHGetSpecialFolderLocation"), 2u);
  EXPECT_EQ(machine.calls("LinkTopic"), 0u);
}

/// It is looked for whatever its attributes, and then only a folder without them is good enough.
TEST_F(StartMenus, AConcealedSharedFolderLeadsToProgramManager) {
  for (const std::uint32_t attributes : {file_attribute::hidden, file_attribute::system}) {
    InstalledMachine fresh;
    fresh.machine.disks().put(fromUtf8(shared), {.directory = true, .attributes = attributes});
    fresh.run();
    EXPECT_EQ(fresh.talkTrace(), conversation()) << attributes;
    EXPECT_EQ(fresh.steps(),
              (Lines{"RunStep | 162", "RunStep | 163", "RunStep | 164", "RunStep | 173"}));
    EXPECT_EQ(fresh.globals().gStartMenuDir, fromUtf8(shared)) << attributes;
    EXPECT_EQ(fresh.machine.calls("SHGetSpecialFolderLocation"), 0u) << attributes;
  }
}

TEST_F(StartMenus, TheSharedFolderIsTakenWithoutAskingForAnother) {
  run();
  EXPECT_EQ(machine.calls("SHGetSpecialFolderLocation"), 0u);
}

TEST_F(StartMenus, AGroupOfBeforeIsNotMadeAgain) {
  machine.disks().putDirectory(fromUtf8(sharedGroup));
  run();
  EXPECT_EQ(machine.calls("MkDir"), 0u);
  EXPECT_EQ(machine.calls("Save"), 6u);
}

// ---- failures

struct Failure {
  const char* call;
  TextView match;
  std::int32_t raise;
  const char* lastStep;
};

/// What ends the run, and the step that its trap tells.
constexpr Failure failures[] = {
    {"GetSystemDirectoryA", u"", 5, "RunStep | 162"},
    {"Dir", u"ProgramData", 70, "RunStep | 163"},
    {"MkDir", u"ZEV Screen Recorder 6", 75, "RunStep | 165"},
    {"CreateObject", u"", 429, "RunStep | 166"},
    {"SpecialFolders", u"", 440, "RunStep | 167"},
    {"CreateShortcut", u"\\Desktop\\", 440, "RunStep | 167"},
    {"TargetPath", u"\\Desktop\\", 440, "RunStep | 167"},
    {"Arguments", u"\\Desktop\\", 440, "RunStep | 167"},
    {"IconLocation", u"\\Desktop\\", 440, "RunStep | 167"},
    {"Description", u"\\Desktop\\", 440, "RunStep | 167"},
    {"WorkingDirectory", u"\\Desktop\\", 440, "RunStep | 167"},
    {"Save", u"\\Desktop\\", 440, "RunStep | 167"},
    {"CreateShortcut", u"Film Works.lnk", 440, "RunStep | 168"},
    {"TargetPath", u"Film Works.lnk", 440, "RunStep | 168"},
    {"Arguments", u"Film Works.lnk", 440, "RunStep | 168"},
    {"WindowStyle", u"Film Works.lnk", 440, "RunStep | 168"},
    {"IconLocation", u"Film Works.lnk", 440, "RunStep | 168"},
    {"Description", u"Film Works.lnk", 440, "RunStep | 168"},
    {"WorkingDirectory", u"Film Works.lnk", 440, "RunStep | 168"},
    {"Save", u"Film Works.lnk", 440, "RunStep | 168"},
    {"Save", u"Reel Desk.lnk", 440, "RunStep | 169"},
    {"Dir", u"ZEV6.chm", 70, "RunStep | 170"},
    {"Save", u"Screen Recorder 6 Help.lnk", 440, "RunStep | 170"},
    {"Dir", u"Uninstall Screen Recorder 6.exe", 70, "RunStep | 171"},
    {"Save", u"Uninstall Screen Recorder 6.lnk", 440, "RunStep | 171"},
};

TEST_F(StartMenus, ErrorsBehindTheFirstEntryReachTheCallerInTheirStep) {
  for (const Failure& each : failures) {
    machine.disks().remove(fromUtf8(sharedGroup));
    machine.setFaults({{.call = each.call,
                        .match = Text(each.match),
                        .effect = Fault::Effect::Raise,
                        .code = each.raise}});
    try {
      run();
      ADD_FAILURE() << each.call << " " << toUtf8(each.match);
    } catch (const RuntimeError& error) {
      EXPECT_EQ(error.number(), each.raise) << each.call;
    }
    EXPECT_EQ(steps().back(), each.lastStep) << each.call << " " << toUtf8(each.match);
  }
  EXPECT_EQ(machine.calls("LinkTopic"), 0u);
  EXPECT_EQ(machine.calls("ShellExecuteA"), 0u);
}

TEST_F(StartMenus, TheFirstEntryFailingAnywhereLeadsToProgramManager) {
  for (const char* call : {"CreateShortcut", "TargetPath", "Arguments", "WindowStyle",
                           "IconLocation", "Description", "WorkingDirectory", "Save"}) {
    InstalledMachine fresh;
    fresh.machine.setFaults(
        {{.call = call, .nth = 1, .effect = Fault::Effect::Raise, .code = 440}});
    EXPECT_NO_THROW(fresh.run()) << call;
    EXPECT_EQ(fresh.talkTrace(), conversation()) << call;
    EXPECT_EQ(fresh.machine.calls("CreateShortcut"), 1u) << call;
    EXPECT_EQ(fresh.trace({"RunStep"}), (Lines{"RunStep | 162", "RunStep | 163", "RunStep | 164",
                                               "RunStep | 165", "RunStep | 166", "RunStep | 173"}))
        << call;
  }
}

TEST_F(StartMenus, AGroupThatCannotBeShownIsPassedOver) {
  machine.setFaults({{.call = "ShellExecuteA", .effect = Fault::Effect::Raise, .code = 5}});
  EXPECT_NO_THROW(run());
  EXPECT_EQ(steps().back(), "RunStep | 172");
}

TEST_F(StartMenus, AnEmptyDesktopIsSkipped) {
  machine.settings().folders.desktop = std::nullopt;
  run();
  machine.settings().folders.desktop = u"   ";
  run();
  EXPECT_EQ(machine.calls("SpecialFolders"), 2u);
  EXPECT_EQ(machine.calls("CreateShortcut"), 10u);
}

// ---- what is wanted

/// All values of the three bytes that can make a difference.
TEST_F(StartMenus, MakesWhatTheOptionsWant) {
  for (int choice = 0; choice < 27; ++choice) {
    const int nt62 = choice / 9;
    const int menu = choice / 3 % 3;
    const int desk = choice % 3;
    const bool group = nt62 != 1 || menu != 0;
    const bool onDesktop = nt62 == 0 || (nt62 == 1 && desk == 1);
    InstalledMachine fresh;
    fresh.globals().gVersionNT62 = static_cast<std::uint8_t>(nt62);
    fresh.globals().gOptStartMenu = static_cast<std::uint8_t>(menu);
    fresh.globals().gOptDesktop = static_cast<std::uint8_t>(desk);
    std::int32_t error = 0;
    try {
      fresh.run();
    } catch (const RuntimeError& raised) {
      error = raised.number();
    }
    EXPECT_EQ(error, !group && onDesktop ? 91 : 0) << choice;
    EXPECT_EQ(fresh.machine.shortcut(fromUtf8(sharedGroup + "\\Reel Desk.lnk")).has_value(), group)
        << choice;
    EXPECT_EQ(fresh.machine.shortcut(fromUtf8(desktop + "\\ZEV Screen Recorder 6.lnk")).has_value(),
              group && onDesktop)
        << choice;
    EXPECT_EQ(fresh.shellTrace().empty(), !group) << choice;
  }
}

}  // namespace
}  // namespace zev
