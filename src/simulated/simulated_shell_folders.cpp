#include "simulated/simulated_shell_folders.h"

#include <algorithm>

namespace zev::simulated {
namespace {

// HRESULTs, as the signed numbers that the calls return.
constexpr std::int32_t succeeded = 0;
constexpr std::int32_t failed = static_cast<std::int32_t>(0x80004005);
constexpr std::int32_t notImplemented = static_cast<std::int32_t>(0x80004001);
constexpr std::int32_t noClassText = static_cast<std::int32_t>(0x800401F3);
constexpr std::int32_t noSuchFolder = static_cast<std::int32_t>(0x80070002);

constexpr std::uint32_t firstMajorWithKnownFolders = 6;
constexpr std::size_t pathBufferUnits = 260;

struct SpecialRow {
  std::int32_t csidl;
  std::optional<Text> FolderSettings::*folder;
};

constexpr SpecialRow specialRows[] = {
    {5, &FolderSettings::documents},     {16, &FolderSettings::desktop},
    {28, &FolderSettings::localAppData}, {36, &FolderSettings::windows},
    {37, &FolderSettings::system},
};

struct KnownRow {
  TextView identifier;
  std::optional<Text> FolderSettings::*folder;
};

constexpr KnownRow knownRows[] = {
    {u"{FDD39AD0-238F-46AF-ADB4-6C85480369C7}", &FolderSettings::documents},
    {u"{F1B32785-6FBA-4FCF-9D55-7B8E7F157091}", &FolderSettings::localAppData},
    {u"{B4BFCC3A-DB2C-424C-B029-7FE99A87C641}", &FolderSettings::desktop},
    {u"{F38BF404-1D43-42F2-9305-67DE0B28FC23}", &FolderSettings::windows},
    {u"{1AC14E77-02E7-4E5D-B744-2EB1AE5198B7}", &FolderSettings::system},
};

int hexDigit(char16_t unit) {
  if (unit >= u'0' && unit <= u'9') return unit - u'0';
  if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10;
  if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10;
  return -1;
}

/// Places of the digits of each byte in "{00000000-0000-0000-0000-000000000000}", in the order of
/// the bytes in memory: three numbers with their lowest byte first, then eight bytes as they stand.
constexpr std::uint8_t digitPlaces[16] = {7,  5,  3,  1,  12, 10, 17, 15,
                                          20, 22, 25, 27, 29, 31, 33, 35};

bool parseGuid(TextView text, Guid& guid) {
  constexpr TextView shape = u"{........-....-....-....-............}";
  if (text.size() != shape.size()) return false;
  for (std::size_t place = 0; place < shape.size(); ++place) {
    if (shape[place] == u'.' ? hexDigit(text[place]) < 0 : text[place] != shape[place])
      return false;
  }
  for (std::size_t byte = 0; byte < guid.size(); ++byte) {
    const std::size_t place = digitPlaces[byte];
    guid[byte] = static_cast<std::uint8_t>(hexDigit(text[place]) * 16 + hexDigit(text[place + 1]));
  }
  return true;
}

}  // namespace

std::optional<Text> SimulatedShellFolders::specialFolder(std::int32_t csidl) const {
  const FolderSettings& folders = machine_.settings.folders;
  const auto found = folders.special.find(csidl);
  if (found != folders.special.end()) return found->second;
  for (const SpecialRow& row : specialRows) {
    if (row.csidl == csidl) return folders.*row.folder;
  }
  return std::nullopt;
}

std::int32_t SimulatedShellFolders::SHGetSpecialFolderLocation(WindowHandle, std::int32_t csidl,
                                                               ItemIdList& list) {
  list = nullptr;
  const std::optional<Text> folder = specialFolder(csidl);
  if (!folder) return failed;
  auto path = std::make_unique<Text>(*folder);
  list = path.get();
  lists_.emplace(list, std::move(path));
  return succeeded;
}

bool SimulatedShellFolders::SHGetPathFromIDList(ItemIdList list, Text& buffer) {
  const auto found = lists_.find(list);
  if (found == lists_.end()) return false;
  const std::string path = machine_.toAnsi(machine_.givenPath(*found->second));
  if (path.size() >= pathBufferUnits) return false;
  writeAnswer(buffer, path, machine_.codePage());
  return true;
}

std::int32_t SimulatedShellFolders::CLSIDFromString(TextView text, Guid& identifier) {
  return parseGuid(beforeNul(text), identifier) ? succeeded : noClassText;
}

std::int32_t SimulatedShellFolders::SHGetKnownFolderPath(const Guid& folder, std::uint32_t,
                                                         std::uintptr_t, char16_t*& path) {
  path = nullptr;
  if (machine_.settings.system.version.major < firstMajorWithKnownFolders) return notImplemented;
  for (const KnownRow& row : knownRows) {
    Guid known{};
    if (!parseGuid(row.identifier, known) || known != folder) continue;
    const std::optional<Text>& place = machine_.settings.folders.*row.folder;
    if (!place) return failed;
    const Text given = machine_.givenPath(*place);
    auto text = std::make_unique<char16_t[]>(given.size() + 1);
    std::copy(given.begin(), given.end(), text.get());
    path = text.get();
    texts_.emplace(path, std::move(text));
    return succeeded;
  }
  return noSuchFolder;
}

std::int32_t SimulatedShellFolders::lstrlenW(const char16_t* text) {
  return text == nullptr ? 0 : static_cast<std::int32_t>(TextView(text).size());
}

void SimulatedShellFolders::CoTaskMemFree(void* memory) {
  lists_.erase(memory);
  texts_.erase(memory);
}

}  // namespace zev::simulated
