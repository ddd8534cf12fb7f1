#include "scenario/machine_change.h"

#include <algorithm>
#include <array>

#include "code_page/code_page.h"
#include "platform/file_system.h"
#include "platform/operations.h"
#include "platform/registry_api.h"

namespace zev::scenario {
namespace {

// Small values.

/// A word of a table and the number that it stands for.
struct NamedBit {
  std::string_view name;
  std::uint32_t bit;
};

constexpr NamedBit attributeNames[] = {
    {"hidden", file_attribute::hidden},
    {"readonly", file_attribute::readOnly},
    {"system", file_attribute::system},
};

constexpr std::string_view denials[] = {"create", "write", "delete", "list"};

void readAttributes(const JsonReader& value, FileChange& file) {
  std::uint32_t bits = 0;
  for (const JsonReader& each : value.elements()) {
    const std::string name = each.utf8();
    const auto row = std::find_if(std::begin(attributeNames), std::end(attributeNames),
                                  [&](const NamedBit& named) { return named.name == name; });
    if (row == std::end(attributeNames)) {
      each.fail("no attribute \"" + name + "\"; there are hidden, readonly, system");
    }
    bits |= row->bit;
  }
  file.attributes = bits;
}

void readDenials(const JsonReader& value, FileChange& file) {
  value.read(file.deny);
  for (const JsonReader& each : value.elements()) {
    if (std::find(std::begin(denials), std::end(denials), each.utf8()) == std::end(denials)) {
      each.fail("\"" + each.utf8() + "\" cannot be denied; create, write, delete, list can");
    }
  }
}

// The system.

constexpr KeyRow<VersionChange> versionKeys[] = {
    {"platform", into<&VersionChange::platform>},
    {"major", into<&VersionChange::major>},
    {"minor", into<&VersionChange::minor>},
    {"build", into<&VersionChange::build>},
    {"csd", into<&VersionChange::csd>},
    {"suiteMask", into<&VersionChange::suiteMask>},
    {"productType", into<&VersionChange::productType>},
    {"fails", into<&VersionChange::fails>},
};

void readVersion(const JsonReader& value, MachineChange& machine) {
  readObject(value, versionKeys, machine.version);
}

void readCodePage(const JsonReader& value, MachineChange& machine) {
  value.read(machine.codePage);
  if (!isKnownCodePage(*machine.codePage)) value.fail("no code page that is known here");
}

std::int32_t keyNumber(const std::string& key, const JsonReader& value) {
  const bool digits =
      !key.empty() && key.size() < 10 &&
      std::all_of(key.begin(), key.end(), [](char each) { return each >= '0' && each <= '9'; });
  if (!digits) value.fail("the key \"" + key + "\" is no number");
  return std::stoi(key);
}

/// An account is the name of its user's folder, too.
void readUser(const JsonReader& value, MachineChange& machine) {
  value.read(machine.user);
  if (value.isNull()) return;
  const Text user = value.text();
  const bool endsAsNoneDoes = user.ends_with(u' ') || user.ends_with(u'.');
  if (!validName(user) || endsAsNoneDoes) value.fail(value.json().dump() + " is no name of a user");
}

void readMetrics(const JsonReader& value, MachineChange& machine) {
  for (const auto& [key, metric] : value.members()) {
    metric.read(machine.metrics[keyNumber(key, metric)]);
  }
}

void readSpecialFolders(const JsonReader& value, FoldersChange& folders) {
  for (const auto& [key, folder] : value.members()) {
    std::optional<Text>& special = folders.special[keyNumber(key, folder)];
    special.reset();
    if (!folder.isNull()) folder.read(special);
  }
}

constexpr KeyRow<FoldersChange> folderKeys[] = {
    {"temp", into<&FoldersChange::temp>},
    {"windows", into<&FoldersChange::windows>},
    {"system", into<&FoldersChange::system>},
    {"documents", into<&FoldersChange::documents>},
    {"localAppData", into<&FoldersChange::localAppData>},
    {"desktop", into<&FoldersChange::desktop>},
    {"special", readSpecialFolders},
};

void readFolders(const JsonReader& value, MachineChange& machine) {
  readObject(value, folderKeys, machine.folders);
}

// Drives and files.

void readFree(const JsonReader& value, DriveChange& drive) {
  drive.free = static_cast<std::uint64_t>(value.whole(0, std::numeric_limits<std::int64_t>::max()));
}

template <auto Member>
void readGeometry(const JsonReader& value, DriveChange& drive) {
  drive.*Member = static_cast<std::uint32_t>(value.whole(1, 1 << 20));
}

constexpr KeyRow<DriveChange> driveKeys[] = {
    {"type", into<&DriveChange::type>},
    {"free", readFree},
    {"sectorsPerCluster", readGeometry<&DriveChange::sectorsPerCluster>},
    {"bytesPerSector", readGeometry<&DriveChange::bytesPerSector>},
    {"label", into<&DriveChange::label>},
    {"ready", into<&DriveChange::ready>},
    {"shortNames", into<&DriveChange::shortNames>},
    {"host", [](const JsonReader& value, DriveChange& drive) { drive.host = value.hostFolder(); }},
};

/// A letter, with or without its colon and backslash.
char16_t driveLetter(const std::string& key, const JsonReader& value) {
  const Text letter = upperCase(fromUtf8(key));
  const TextView behind = letter.empty() ? u"?" : TextView(letter).substr(1);
  if ((!behind.empty() && behind != u":" && behind != u":\\") || letter.front() < u'A' ||
      letter.front() > u'Z') {
    value.fail("\"" + key + "\" is no letter of a drive");
  }
  return letter.front();
}

void readDrives(const JsonReader& value, MachineChange& machine) {
  for (const auto& [key, drive] : value.members()) {
    DriveEntry entry{drive.path(), driveLetter(key, drive), std::nullopt};
    if (!drive.isNull()) readObject(drive, driveKeys, entry.change.emplace());
    machine.drives.push_back(std::move(entry));
  }
}

void setContent(const JsonReader& value, FileChange& file, FileContent content) {
  if (!std::holds_alternative<AsItIs>(file.content)) {
    value.fail("one of directory, text, base64, size, host, junction and symlink is enough");
  }
  file.content = std::move(content);
}

void readDirectory(const JsonReader& value, FileChange& file) {
  value.requireTrue();
  setContent(value, file, Directory{});
}

void readSize(const JsonReader& value, FileChange& file) {
  constexpr std::int64_t most = std::int64_t{1} << 40;
  setContent(value, file, FileZeros{static_cast<std::uint64_t>(value.whole(0, most))});
}

void readFileText(const JsonReader& value, FileChange& file) {
  setContent(value, file, FileText{value.text()});
}

void readBase64(const JsonReader& value, FileChange& file) {
  setContent(value, file, FileBytes{value.base64()});
}

void readHostFile(const JsonReader& value, FileChange& file) {
  setContent(value, file, FileFromHost{value.hostFile()});
}

void requireAbsolute(const std::string& path, const JsonReader& value) {
  if (path.size() < 3 || path[1] != ':' || (path[2] != '\\' && path[2] != '/')) {
    value.fail("\"" + path + "\" is no full path of the machine, such as C:\\Temp");
  }
}

void readJunction(const JsonReader& value, FileChange& file) {
  requireAbsolute(value.utf8(), value);
  setContent(value, file, FileLink{value.text(), true});
}

void readSymlink(const JsonReader& value, FileChange& file) {
  requireAbsolute(value.utf8(), value);
  setContent(value, file, FileLink{value.text(), false});
}

constexpr KeyRow<FileChange> fileKeys[] = {
    {"directory", readDirectory},
    {"text", readFileText},
    {"base64", readBase64},
    {"size", readSize},
    {"host", readHostFile},
    {"junction", readJunction},
    {"symlink", readSymlink},
    {"attributes", readAttributes},
    {"locked", into<&FileChange::locked>},
    {"inUse", into<&FileChange::inUse>},
    {"deny", readDenials},
};

std::optional<FileChange> readFile(const JsonReader& value) {
  if (value.isNull()) return std::nullopt;
  FileChange file;
  if (value.isText()) {
    file.content = FileText{value.text()};
  } else if (value.isObject()) {
    readObject(value, fileKeys, file);
  } else {
    value.failWanted("a text, an object or null");
  }
  return file;
}

void readFiles(const JsonReader& value, MachineChange& machine) {
  for (const auto& [key, file] : value.members()) {
    requireAbsolute(key, file);
    machine.files.push_back({file.path(), fromUtf8(key), readFile(file)});
  }
}

// The registry.

void readDataText(const JsonReader& value, RegistryData& data) { data.data = value.text(); }
void readDataHex(const JsonReader& value, RegistryData& data) { data.data = value.hex(); }

constexpr KeyRow<RegistryData> dataKeys[] = {
    {"type", into<&RegistryData::type>},
    {"text", readDataText},
    {"hex", readDataHex},
};

std::vector<std::uint8_t> littleEndian(std::uint32_t number) {
  std::vector<std::uint8_t> bytes;
  for (unsigned shift = 0; shift < 32; shift += 8) {
    bytes.push_back(static_cast<std::uint8_t>(number >> shift));
  }
  return bytes;
}

RegistryData readTypedData(const JsonReader& value) {
  const bool complete = value.json().size() == 2 && value.json().contains("type");
  RegistryData data;
  readObject(value, dataKeys, data);
  if (!complete) value.fail("a type and one of text and hex are wanted");
  return data;
}

RegistryData readData(const JsonReader& value) {
  if (value.isText()) return {registry_type::text, value.text()};
  if (value.isNumber()) {
    const std::int64_t number = value.whole(std::numeric_limits<std::int32_t>::min(),
                                            std::numeric_limits<std::uint32_t>::max());
    return {registry_type::number, littleEndian(static_cast<std::uint32_t>(number))};
  }
  if (!value.isObject()) value.failWanted("a text, a number, an object or null");
  return readTypedData(value);
}

void readValues(const JsonReader& values, RegistryChange key, MachineChange& machine) {
  machine.registry.push_back(key);
  machine.registry.back().name.reset();
  if (values.isNull()) return;
  machine.registry.back().data.emplace();
  for (const auto& [name, value] : values.members()) {
    key.path = value.path();
    key.name = std::optional<Text>(fromUtf8(name));
    key.data.reset();
    if (!value.isNull()) key.data = readData(value);
    machine.registry.push_back(key);
  }
}

void denyKeys(const JsonReader& keys, TextView hive, MachineChange& machine) {
  if (!machine.deniedKeys) machine.deniedKeys.emplace();
  for (const JsonReader& each : keys.elements()) {
    const Text key = hive.empty() ? each.text() : join(hive, u"\\", each.text());
    const auto named = hiveNamed(TextView(key).substr(0, key.find(u'\\')));
    if (!named) each.fail("a key begins with its hive, such as HKEY_LOCAL_MACHINE\\Software");
    const std::size_t bar = key.find(u'\\');
    machine.deniedKeys->push_back(
        join(hiveName(*named), bar == Text::npos ? u"" : TextView(key).substr(bar)));
  }
}

void readHive(const JsonReader& keys, RegistryKey hive, MachineChange& machine) {
  for (const auto& [key, values] : keys.members()) {
    if (key == "deny" && values.json().isList()) {
      denyKeys(values, hiveName(hive), machine);
      continue;
    }
    RegistryChange change;
    change.path = values.path();
    change.hive = hive;
    change.key = fromUtf8(key);
    readValues(values, std::move(change), machine);
  }
}

void readRegistry(const JsonReader& value, MachineChange& machine) {
  for (const auto& [key, content] : value.members()) {
    if (key == "deny") {
      denyKeys(content, {}, machine);
      continue;
    }
    const auto hive = hiveNamed(fromUtf8(key));
    if (!hive) {
      content.fail("no hive \"" + key +
                   "\"; there are HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE");
    }
    readHive(content, *hive, machine);
  }
}

// Programs, services and faults.

constexpr KeyRow<ServicesChange> serviceKeys[] = {
    {"shortcuts", into<&ServicesChange::shortcuts>},
    {"programManager", into<&ServicesChange::programManager>},
};

void readServices(const JsonReader& value, MachineChange& machine) {
  readObject(value, serviceKeys, machine.services);
}

constexpr KeyRow<ProgramChange> programKeys[] = {
    {"starts", into<&ProgramChange::starts>},     {"opens", into<&ProgramChange::opens>},
    {"running", into<&ProgramChange::running>},   {"exit", into<&ProgramChange::exit>},
    {"duration", into<&ProgramChange::duration>},
};

void readPrograms(const JsonReader& value, MachineChange& machine) {
  for (const auto& [key, program] : value.members()) {
    requireAbsolute(key, program);
    ProgramChange change;
    readObject(program, programKeys, change);
    machine.programs.emplace_back(fromUtf8(key), change);
  }
}

void readNth(const JsonReader& value, FaultChange& fault) {
  if (value.isText() && value.utf8() == "all") return;
  if (!value.isNumber()) value.failWanted("a number from 1 or \"all\"");
  fault.nth = static_cast<std::uint32_t>(value.whole(1, std::numeric_limits<std::int32_t>::max()));
}

void readCall(const JsonReader& value, FaultChange& fault) {
  const auto name = findOperation(value.utf8());
  if (name) {
    fault.call = *name;
    return;
  }
  std::string known;
  for (const std::string_view each : operationNames()) {
    known += (known.empty() ? " " : ", ") + std::string(each);
  }
  value.fail("no operation \"" + value.utf8() + "\"; there are" + known);
}

/// A number of an error, signed or by its bits: 0x80070005 is written 2147942405 or -2147024891.
template <auto Member>
void readErrorNumber(const JsonReader& value, FaultChange& fault) {
  const std::int64_t number = value.whole(std::numeric_limits<std::int32_t>::min(),
                                          std::numeric_limits<std::uint32_t>::max());
  fault.*Member = static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
}

// clang-format off
constexpr KeyRow<FaultChange> faultKeys[] = {
    {"call", readCall},
    {"nth", readNth},
    {"match", into<&FaultChange::match>},
    {"error", readErrorNumber<&FaultChange::error>},
    {"raise", readErrorNumber<&FaultChange::raise>},
    {"ignore", into<&FaultChange::ignore>},
};
// clang-format on

FaultChange readFault(const JsonReader& value) {
  FaultChange fault;
  readObject(value, faultKeys, fault);
  if (fault.call.empty()) value.fail("a fault names the call that it hits");
  const int effects = (fault.error ? 1 : 0) + (fault.raise ? 1 : 0) + (fault.ignore ? 1 : 0);
  if (effects != 1) value.fail("a fault has one of error, raise and ignore");
  return fault;
}

void readFaults(const JsonReader& value, MachineChange& machine) {
  machine.faults.emplace();
  for (const JsonReader& each : value.elements()) machine.faults->push_back(readFault(each));
}

void readInstaller(const JsonReader& value, MachineChange& machine) {
  requireAbsolute(value.utf8(), value);
  machine.installer = value.text();
}

constexpr KeyRow<MachineChange> machineKeys[] = {
    {"version", readVersion},
    {"architecture", into<&MachineChange::architecture>},
    {"wow64", into<&MachineChange::wow64>},
    {"metrics", readMetrics},
    {"productInfo", into<&MachineChange::productInfo>},
    {"uiLanguage", into<&MachineChange::uiLanguage>},
    {"codePage", readCodePage},
    {"user", readUser},
    {"domain", into<&MachineChange::domain>},
    {"folders", readFolders},
    {"drives", readDrives},
    {"files", readFiles},
    {"registry", readRegistry},
    {"windows", into<&MachineChange::windows>},
    {"installer", readInstaller},
    {"services", readServices},
    {"programs", readPrograms},
    {"faults", readFaults},
};

}  // namespace

MachineChange readMachine(const JsonReader& machine) {
  MachineChange change;
  readObject(machine, machineKeys, change);
  return change;
}

}  // namespace zev::scenario
