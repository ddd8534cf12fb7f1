#include "scenarios/expected_machine.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

#include "digest/sha256.h"
#include "runtime/text.h"
#include "scenarios/told_boxes.h"
#include "support/table.h"

namespace zev {
namespace {

using SortedJson = nlohmann::json;
using test::Row;
using test::Table;

const std::string profiles = "C:\\Users";
const std::string user = "bob";
const std::string local = "\\AppData\\Local";
const std::string product = "\\Tavorns\\ZEV5";
const std::string ownFolder = profiles + "\\" + user + local;
const std::string systemFolder = "C:\\Windows\\system32";
const std::string projects = profiles + "\\" + user + "\\Documents\\ZEV Projects";
const std::string startMenu = "C:\\ProgramData\\Microsoft\\Windows\\Start Menu";
const std::string groupFolder = startMenu + "\\ZEV Screen Recorder 6";
const std::string desktopFolder = profiles + "\\" + user + "\\Desktop";
const std::string classes = "Software\\Classes\\";

constexpr int textType = 1;
constexpr int numberType = 4;

/// Rows of the manifest with a rule of their own.
constexpr int userProgram = 25;
constexpr int sampleProject = 29;
constexpr int redistributable = 31;
constexpr int programManifest = 48;

/// Where the path of the video stands in the sample project.
constexpr std::size_t videoOffset = 25;
constexpr std::size_t videoRoom = 512;

std::string parentOf(const std::string& path) { return path.substr(0, path.rfind('\\')); }

std::string upper(const std::string& path) { return toUtf8(upperCase(fromUtf8(path))); }

std::string digestOf(const std::string& bytes) {
  return sha256Hex({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

// ---- the sample product

/// A member as it is before it is packed: the sample product lies beside its package.
std::string memberBytes(const std::string& name) {
  const auto folder = std::filesystem::path(ZEV_PACKAGE).parent_path() / "sample";
  std::ifstream in(folder / name, std::ios::binary);
  if (!in) throw std::runtime_error("no member of the sample product: " + (folder / name).string());
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

/// The entry of a member; the project names its video. Each is read once a process.
SortedJson memberEntry(const std::string& name, const std::string& video) {
  static std::map<std::string, SortedJson> entries;
  SortedJson& entry = entries[name + "|" + video];
  if (!entry.is_null()) return entry;
  std::string bytes = memberBytes(name);
  if (!video.empty()) {
    std::string path = video;
    path.resize(videoRoom, ' ');
    bytes.replace(videoOffset, videoRoom, path);
  }
  entry = {{"size", bytes.size()}, {"sha256", digestOf(bytes)}};
  return entry;
}

// ---- entries of a state

void addDirectory(SortedJson& state, const std::string& path) {
  constexpr std::size_t root = 2;
  if (path.size() <= root || state["files"].contains(path)) return;
  addDirectory(state, parentOf(path));
  state["files"][path] = {{"directory", true}};
}

/// A file that is written anew keeps its attributes, but those that the writing itself takes away.
void addFile(SortedJson& state, const std::string& path, const std::string& bytes) {
  SortedJson& entry = state["files"][path] = {{"size", bytes.size()}, {"sha256", digestOf(bytes)}};
  if (path.find(product + "\\") != std::string::npos) entry["text"] = bytes;
}

void addKey(SortedJson& state, const std::string& key) {
  SortedJson& keys = state["registry"]["HKEY_LOCAL_MACHINE"];
  if (keys.contains(key)) return;
  if (key.find('\\') != std::string::npos) addKey(state, parentOf(key));
  keys[key] = SortedJson::object();
}

void addValue(SortedJson& state, const std::string& key, const std::string& name,
              const SortedJson& data) {
  addKey(state, key);
  state["registry"]["HKEY_LOCAL_MACHINE"][key][name] = {
      {"type", data.is_string() ? textType : numberType}, {"value", data}};
}

// ---- members

bool isLaid(int row, const InstallOrder& order) {
  if (row == userProgram) return !order.profileClass;
  if (row == programManifest) return order.profileClass;
  return row != redistributable;  // it is deleted behind its run, or not laid
}

void layMembers(SortedJson& state, const InstallOrder& order) {
  const std::map<std::string, std::string> folders = {
      {"install", order.directory}, {"system", systemFolder}, {"projects", projects}};
  addDirectory(state, order.directory);
  addDirectory(state, projects);
  for (const Row& row : Table::read("manifest_targets.tsv")) {
    if (row.isNone("row") || !isLaid(row.number("row"), order)) continue;
    const std::string& name = row.quoted("installed_name");
    const bool patched = row.number("row") == sampleProject;
    state["files"][folders.at(row.word("target")) + "\\" + name] =
        memberEntry(name, patched ? order.directory + "\\SampleAVI.avi" : "");
  }
  if (order.profileClass) addFile(state, order.directory + "\\UserF.dat", ownFolder + "\r\n");
}

// ---- settings

/// One of the two stores of the settings. Numbers are numbers in both.
class Store {
 public:
  virtual ~Store() = default;
  virtual SortedJson read(const std::string& name) const = 0;  ///< null if absent
  virtual void write(const std::string& name, const SortedJson& data) = 0;
};

/// A folder of files, one a value.
class ValueFiles final : public Store {
 public:
  ValueFiles(SortedJson& state, std::string folder) : state_(state), folder_(std::move(folder)) {
    addDirectory(state_, folder_);
  }

  SortedJson read(const std::string& name) const override {
    const std::string path = folder_ + "\\" + name;
    if (!state_["files"].contains(path)) return nullptr;
    return std::stoi(state_["files"][path]["text"].get<std::string>());
  }

  void write(const std::string& name, const SortedJson& data) override {
    const std::string text = data.is_string() ? data.get<std::string>() : data.dump();
    addFile(state_, folder_ + "\\" + name, text + "\r\n");
  }

 private:
  SortedJson& state_;
  std::string folder_;
};

class RegistryValues final : public Store {
 public:
  explicit RegistryValues(SortedJson& state) : state_(state) { addKey(state_, key_); }

  SortedJson read(const std::string& name) const override {
    const SortedJson& values = state_["registry"]["HKEY_LOCAL_MACHINE"][key_];
    return values.contains(name) ? values[name]["value"] : SortedJson();
  }

  void write(const std::string& name, const SortedJson& data) override {
    addValue(state_, key_, name, data);
  }

 private:
  SortedJson& state_;
  const std::string key_ = "Software\\Tavorns\\ZEV5";
};

/// Whether a row of the settings is written, by the version that stood there before.
bool isWritten(const Row& row, const SortedJson& version, const Store& store, int listIndex) {
  const std::string& condition = row.word("condition");
  if (condition == "always") return true;
  if (condition == "Version present and below 16, AutoCodec absent") {
    return !version.is_null() && version < 16 && store.read("AutoCodec").is_null();
  }
  if (condition == "Version present and below 17") return !version.is_null() && version < 17;
  if (condition == "dwKFE is 0 or absent") {
    const SortedJson frames = store.read("dwKFE");
    return frames.is_null() || frames == 0;
  }
  if (condition == "Combo1.ListIndex above -1") return listIndex > -1;
  throw std::out_of_range(row.where() + ": no such condition");
}

void writeSettings(Store& store, const std::string& table, const InstallOrder& order) {
  const SortedJson version = store.read("Version");
  for (const Row& row : Table::read(table)) {
    if (!isWritten(row, version, store, order.listIndex)) continue;
    const std::string& name = row.word("value");
    if (row.is("type", "text")) {
      store.write(name, filled(row.quoted("written"), {{"gInstallDir", order.directory}}));
    } else {
      const bool language = row.is("written", "{Combo1.ListIndex}");
      store.write(name, language ? order.listIndex : row.number("written"));
    }
  }
}

void writeOwnSettings(SortedJson& state, const InstallOrder& order) {
  if (order.profileClass) {
    ValueFiles store(state, ownFolder + product);
    writeSettings(store, "run_settings.tsv", order);
  } else {
    RegistryValues store(state);
    writeSettings(store, "run_settings.tsv", order);
  }
}

/// Every other profile that has a local folder gets settings of its own.
void writeOtherProfiles(SortedJson& state, const InstallOrder& order) {
  std::set<std::string> names;
  for (const auto& [path, entry] : state["files"].items()) {
    if (parentOf(path) == profiles) names.insert(path.substr(profiles.size() + 1));
  }
  names.erase(user);
  for (const std::string& name : names) {
    const std::string folder = profiles + "\\" + name + local;
    if (!state["files"].contains(folder)) continue;
    ValueFiles store(state, folder + product);
    writeSettings(store, "user_settings.tsv", order);
  }
}

// ---- entries in the system

Filling fillingOf(const InstallOrder& order) { return {{"gInstallDir", order.directory}}; }

void writeSystem(SortedJson& state, const InstallOrder& order) {
  for (const Row& row : Table::read("uninstall_entry.tsv")) {
    addValue(state, row.quoted("key"), row.word("value"),
             filled(row.quoted("contents"), fillingOf(order)));
  }
  for (const Row& row : Table::read("file_type.tsv")) {
    addValue(state, classes + row.quoted("key"), "",
             filled(row.quoted("contents"), fillingOf(order)));
  }
}

void addShortcut(SortedJson& state, const std::string& path, const Row& row,
                 const InstallOrder& order) {
  constexpr int usualWindow = 1;
  const auto text = [&](const char* column) {
    return filled(row.quoted(column), fillingOf(order));
  };
  state["files"][path] = {{"shortcut", true}};
  state["shortcuts"][upper(path)] = {
      {"TargetPath", text("target")},
      {"Arguments", text("arguments")},
      {"WindowStyle", row.isNone("window_style") ? usualWindow : row.number("window_style")},
      {"IconLocation", text("icon")},
      {"Description", text("description")},
      {"WorkingDirectory", text("working_directory")}};
}

void makeShortcuts(SortedJson& state, const InstallOrder& order) {
  if (order.group) addDirectory(state, groupFolder);
  for (const Row& row : Table::read("shortcuts.tsv")) {
    const bool onDesktop = row.is("place", "desktop");
    if (!(onDesktop ? order.desktop : order.group)) continue;
    const std::string& folder = onDesktop ? desktopFolder : groupFolder;
    addShortcut(state, folder + "\\" + row.quoted("file"), row, order);
  }
}

}  // namespace

SortedJson comparable(const SortedJson& state) {
  SortedJson result = state;
  result.erase("started");
  result.erase("opened");
  for (SortedJson& drive : result["drives"]) drive.erase("free");
  for (auto& [path, entry] : result["files"].items()) {
    if (path.ends_with(".lnk")) entry = {{"shortcut", true}};
    if (path.find(product + "\\") == std::string::npos) entry.erase("text");
  }
  return result;
}

SortedJson installedOn(const SortedJson& before, const InstallOrder& order) {
  SortedJson state = comparable(before);
  layMembers(state, order);
  writeOwnSettings(state, order);
  writeSystem(state, order);
  makeShortcuts(state, order);
  if (order.profileClass) writeOtherProfiles(state, order);
  return state;
}

std::string differences(const SortedJson& found, const SortedJson& expected) {
  std::string lines;
  for (const SortedJson& each : SortedJson::diff(expected, found)) {
    lines += each["op"].get<std::string>() + " " + each["path"].get<std::string>() + " " +
             each.value("value", SortedJson()).dump() + "\n";
  }
  return lines;
}

}  // namespace zev
