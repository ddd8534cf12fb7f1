#include "house/rooms.h"

#include <gtest/gtest.h>

namespace zev::house {
namespace {

namespace fs = std::filesystem;

/// The folder src, beside the folder of the tests.
const fs::path src = fs::path(ZEV_TEST_DATA).parent_path().parent_path() / "src";

/// Rooms whose code is the same on every system.
const std::set<std::string> portableRooms = {"runtime", "platform", "state",       "localisation",
                                             "system",  "package",  "destination", "wizard",
                                             "socket",  "lz"};

/// Which rooms a room may know directly. An arrow that is not here is refused, even if CMake has
/// it.
const Arrows allowed = {
    {"runtime", {}},
    {"code_page", {"runtime"}},
    {"platform", {"runtime"}},
    {"observed", {"runtime", "platform"}},
    {"lz", {"runtime", "platform"}},
    {"socket", {"runtime", "platform"}},
    {"state", {"platform", "socket"}},
    {"localisation", {"state"}},
    {"system", {"localisation"}},
    {"package", {"system", "lz"}},
    {"destination", {"system"}},
    {"wizard", {"package", "destination"}},
    {"digest", {}},
    {"json", {"runtime"}},
    {"simulated", {"runtime", "json", "code_page", "platform", "observed", "lz", "digest"}},
    {"scenario", {"json", "code_page", "platform"}},
    {"win32", {"runtime", "platform", "lz", "win32_sockets"}},
    {"posix", {"runtime", "code_page", "platform"}},
};

/// The namespace of all code in a folder and those within it. What stands in no such folder has the
/// project's own, `zev`.
const std::map<std::string, std::string> namespaces = {
    {"json", "zev::json"},
    {"lz", "zev::lz"},
    {"observed", "zev::observed"},
    {"posix", "zev::posix"},
    {"programs/command_line", "zev::command_line"},
    {"programs/zevdrive", "zev::drive"},
    {"programs/zevnet", "zev::netcat"},
    {"programs/zevpack", "zev::packing"},
    {"programs/zevsim", "zev::simulator"},
    {"scenario", "zev::scenario"},
    {"simulated", "zev::simulated"},
    {"win32", "zev::win32"},
};

std::string namespaceOf(const std::string& path) {
  for (const auto& [folder, name] : namespaces) {
    if (path.starts_with(folder + "/")) return name;
  }
  return "zev";
}

std::string roomOf(const std::string& path) { return path.substr(0, path.find('/')); }

/// The headers of the standard library have neither a folder nor an ending.
bool isStandardHeader(const std::string& name) {
  return name.find_first_of("./") == std::string::npos;
}

TEST(House, FindsTheRooms) {
  const Arrows arrows = readArrows(src);
  for (const char* room : {"runtime", "platform", "state", "localisation", "system", "package",
                           "destination", "wizard"}) {
    EXPECT_EQ(arrows.count(room), 1u) << room;
    EXPECT_FALSE(filesOf(src, room).empty()) << room;
  }
}

TEST(House, HasNoSystemHeaderInAPortableRoom) {
  for (const std::string& room : portableRooms) {
    if (!fs::exists(src / room)) continue;
    for (const SourceFile& file : filesOf(src, room)) {
      for (const std::string& header : includesOf(file.contents).system) {
        EXPECT_TRUE(isStandardHeader(header)) << file.name << " includes <" << header << ">";
      }
    }
  }
}

TEST(House, AsksForNoSystemInAPortableRoom) {
  for (const std::string& room : portableRooms) {
    if (!fs::exists(src / room)) continue;
    for (const SourceFile& file : filesOf(src, room)) {
      EXPECT_EQ(systemsAskedFor(file.contents), std::vector<std::string>()) << file.name;
    }
  }
}

TEST(House, HasNoArrowThatIsNotAllowed) {
  for (const auto& [room, known] : readArrows(src)) {
    const auto rule = allowed.find(room);
    ASSERT_NE(rule, allowed.end()) << "nobody has said what the room " << room << " may know";
    for (const std::string& each : known) {
      EXPECT_EQ(rule->second.count(each), 1u) << room << " may not know " << each;
    }
  }
}

TEST(House, IncludesOnlyRoomsThatCMakeKnows) {
  const Arrows arrows = readArrows(src);
  for (const auto& [room, known] : arrows) {
    const std::set<std::string> reached = reach(arrows, room);
    for (const SourceFile& file : filesOf(src, room)) {
      for (const std::string& header : includesOf(file.contents).own) {
        EXPECT_EQ(reached.count(roomOf(header)), 1u) << file.name << " includes " << header;
        EXPECT_TRUE(fs::exists(src / header)) << file.name << " includes " << header;
      }
    }
  }
}

TEST(House, HasNoArrowsInACircle) {
  const Arrows arrows = readArrows(src);
  for (const auto& [room, known] : arrows) {
    for (const std::string& each : known) {
      EXPECT_EQ(reach(arrows, each).count(room), 0u) << room << " knows " << each;
    }
  }
}

TEST(House, HasOneNamespaceInARoom) {
  std::set<std::string> found;
  for (const SourceFile& file : filesOf(src, ".")) {
    for (const std::string& name : namespacesOf(file.contents)) {
      EXPECT_EQ(name, namespaceOf(file.name)) << file.name;
      found.insert(name);
    }
  }
  for (const auto& [folder, name] : namespaces) EXPECT_EQ(found.count(name), 1u) << folder;
}

// ---- the checks themselves

TEST(HouseChecks, FindIncludesHoweverTheyAreWritten) {
  const Includes includes = includesOf(
      "#pragma once\n#include <vector>\n  #  include <windows.h>\n#include <sys/stat.h>\n"
      "#include \"lz/decoder.h\"\n// #include <unistd.h>\nconst char* x = \"#include <no>\";\n");
  EXPECT_EQ(includes.system, (std::vector<std::string>{"vector", "windows.h", "sys/stat.h"}));
  EXPECT_EQ(includes.own, std::vector<std::string>{"lz/decoder.h"});
  EXPECT_TRUE(isStandardHeader("vector"));
  for (const char* header : {"windows.h", "unistd.h", "winsock2.h", "sys/stat", "math.h"}) {
    EXPECT_FALSE(isStandardHeader(header)) << header;
  }
}

TEST(HouseChecks, FindWhatThePreprocessorIsAskedFor) {
  EXPECT_EQ(systemsAskedFor("#ifdef _WIN32\n#endif\n# if defined(__linux__) || X\n#endif\n"),
            (std::vector<std::string>{"_WIN32", "__linux__"}));
  EXPECT_EQ(systemsAskedFor("#if 0\n#elif defined _MSC_VER\n#endif\n"),
            std::vector<std::string>{"_MSC_VER"});
  EXPECT_TRUE(systemsAskedFor("/// not on _WIN32\n#ifndef MY_WIN32_HEADER\n").empty());
}

TEST(HouseChecks, FindNamespaces) {
  EXPECT_EQ(namespacesOf("namespace zev {\nnamespace zev::lz {\nnamespace {\nnamespace error {\n"
                         "namespace fs = std::filesystem;\nnamespace z = zev::lz;\n"
                         "using namespace zev;\n}  // namespace zev\nnamespace zevon {\n"),
            (std::vector<std::string>{"zev", "zev::lz"}));
}

TEST(HouseChecks, ReadWhatARoomKnows) {
  EXPECT_EQ(knownRooms("zev_room(a\n  SOURCES x.cpp\n  KNOWS b c\n    json::json)\n"),
            (std::set<std::string>{"b", "c"}));
  EXPECT_TRUE(knownRooms("zev_room(a SOURCES x.cpp)\n").empty());
}

TEST(HouseChecks, FollowArrowsThroughOtherRooms) {
  const Arrows arrows = {{"a", {}}, {"b", {"a"}}, {"c", {"b"}}, {"d", {"a"}}};
  EXPECT_EQ(reach(arrows, "c"), (std::set<std::string>{"a", "b", "c"}));
  EXPECT_EQ(reach(arrows, "d"), (std::set<std::string>{"a", "d"}));
  EXPECT_EQ(reach({{"a", {"b"}}, {"b", {"a"}}}, "b").count("a"), 1u);
}

}  // namespace
}  // namespace zev::house
