#include "scenario/scenario.h"

#include <algorithm>
#include <fstream>

#include "scenario/written_out.h"

namespace zev::scenario {
namespace {

constexpr std::int64_t longestPackage = std::int64_t{1} << 31;

std::uint64_t readCount(const JsonReader& value) {
  return static_cast<std::uint64_t>(value.whole(0, longestPackage));
}

void readFlips(const JsonReader& value, Package& package) {
  for (const JsonReader& each : value.elements()) package.flip.push_back(readCount(each));
}

constexpr KeyRow<Package> packageKeys[] = {
    {"file", [](const JsonReader& value, Package& to) { to.file = value.hostPath(); }},
    {"cutEnd", [](const JsonReader& value, Package& to) { to.cutEnd = readCount(value); }},
    {"cutStart", [](const JsonReader& value, Package& to) { to.cutStart = readCount(value); }},
    {"keepEnd", [](const JsonReader& value, Package& to) { to.keepEnd = readCount(value); }},
    {"length", [](const JsonReader& value, Package& to) { to.length = readCount(value); }},
    {"flip", readFlips},
};

void readPackage(const JsonReader& value, Scenario& scenario) {
  scenario.package.path = value.path();
  readObject(value, packageKeys, scenario.package);
}

constexpr KeyRow<Scenario> scenarioKeys[] = {
    {"name", into<&Scenario::name>},
    {"machine", [](const JsonReader& value, Scenario& to) { to.machine = readMachine(value); }},
    {"package", readPackage},
    {"script", [](const JsonReader& value, Scenario& to) { to.script = readSteps(value); }},
};

/// The file as it stands, or the zeros that stand for an image.
InstallerBytes wholeFile(const Package& package) {
  if (!package.file) return {{}, bareImageLength, 0, 0, {}};
  std::error_code error;
  if (!std::filesystem::is_regular_file(*package.file, error)) {
    throw ScenarioError(package.path + ".file", "no file " + package.file->string());
  }
  const std::uintmax_t size = std::filesystem::file_size(*package.file, error);
  if (error || !std::ifstream(*package.file, std::ios::binary)) {
    throw ScenarioError(package.path, "cannot read " + package.file->string());
  }
  return {package.file, 0, 0, size, {}};
}

/// Leaves out the first `count` bytes, which must be there.
void cutFront(InstallerBytes& bytes, std::uint64_t count) {
  const std::uint64_t zeros = std::min(count, bytes.zeros);
  bytes.zeros -= zeros;
  bytes.offset += count - zeros;
  bytes.size -= count - zeros;
}

void cutBack(InstallerBytes& bytes, std::uint64_t count) {
  const std::uint64_t fromFile = std::min(count, bytes.size);
  bytes.size -= fromFile;
  bytes.zeros -= count - fromFile;
}

void cut(const Package& package, InstallerBytes& bytes) {
  if (package.cutEnd + package.cutStart > bytes.length()) {
    throw ScenarioError(package.path, "more is cut off than the " + std::to_string(bytes.length()) +
                                          " bytes that the file has");
  }
  cutBack(bytes, package.cutEnd);
  cutFront(bytes, package.cutStart);
}

void keepEnd(const Package& package, InstallerBytes& bytes) {
  if (*package.keepEnd > bytes.length()) {
    throw ScenarioError(package.path + ".keepEnd",
                        "the file has only " + std::to_string(bytes.length()) + " bytes");
  }
  cutFront(bytes, bytes.length() - *package.keepEnd);
}

void setLength(std::uint64_t length, InstallerBytes& bytes) {
  if (length <= bytes.length()) {
    cutBack(bytes, bytes.length() - length);
  } else {
    bytes.zeros += length - bytes.length();
  }
}

void invert(const Package& package, InstallerBytes& bytes) {
  for (const std::uint64_t offset : package.flip) {
    if (offset >= bytes.length()) {
      throw ScenarioError(package.path + ".flip", std::to_string(offset) +
                                                      " is behind the end of " +
                                                      std::to_string(bytes.length()) + " bytes");
    }
  }
  bytes.inverted = package.flip;
}

}  // namespace

namespace {

Scenario scenarioOf(const WrittenOut& written, const std::filesystem::path& folder) {
  Scenario scenario;
  readObject(JsonReader(written.document, folder, "$", written.origins), scenarioKeys, scenario);
  return scenario;
}

WrittenOut readAndWriteOut(const ScenarioAddress& address) {
  return writeOut(readDocument(address.file), address.file.parent_path(), address.chosen);
}

}  // namespace

Scenario parseScenario(std::string_view text, const std::filesystem::path& folder) {
  return scenarioOf(writeOut(parseJson(text), folder), folder);
}

Scenario readScenario(const std::filesystem::path& file) {
  const ScenarioAddress address = addressOf(file);
  return scenarioOf(readAndWriteOut(address), address.file.parent_path());
}

Json writtenOut(const std::filesystem::path& file) {
  return readAndWriteOut(addressOf(file)).document;
}

InstallerBytes makeInstaller(const Package& package) {
  InstallerBytes bytes = wholeFile(package);
  cut(package, bytes);
  if (package.keepEnd) keepEnd(package, bytes);
  if (package.length) setLength(*package.length, bytes);
  invert(package, bytes);
  return bytes;
}

}  // namespace zev::scenario
