#include "scenario/scenario.h"

#include <algorithm>
#include <fstream>
#include <iterator>

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

std::vector<std::uint8_t> readBytes(const Package& package) {
  if (!package.file) return std::vector<std::uint8_t>(bareImageLength);
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(*package.file, ignored)) {
    throw ScenarioError(package.path + ".file", "no file " + package.file->string());
  }
  std::ifstream in(*package.file, std::ios::binary);
  std::vector<std::uint8_t> bytes;
  if (in) bytes.resize(static_cast<std::size_t>(std::filesystem::file_size(*package.file)));
  in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (!in) throw ScenarioError(package.path, "cannot read " + package.file->string());
  return bytes;
}

void cut(const Package& package, std::vector<std::uint8_t>& bytes) {
  if (package.cutEnd + package.cutStart > bytes.size()) {
    throw ScenarioError(package.path, "more is cut off than the " + std::to_string(bytes.size()) +
                                          " bytes that the file has");
  }
  bytes.resize(bytes.size() - static_cast<std::size_t>(package.cutEnd));
  bytes.erase(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(package.cutStart));
}

void keepEnd(const Package& package, std::vector<std::uint8_t>& bytes) {
  if (*package.keepEnd > bytes.size()) {
    throw ScenarioError(package.path + ".keepEnd",
                        "the file has only " + std::to_string(bytes.size()) + " bytes");
  }
  bytes.erase(bytes.begin(), bytes.end() - static_cast<std::ptrdiff_t>(*package.keepEnd));
}

void setLength(std::size_t length, std::vector<std::uint8_t>& bytes) {
  if (length <= bytes.size()) {
    bytes.resize(length);
  } else {
    bytes.insert(bytes.begin(), length - bytes.size(), std::uint8_t{0});
  }
}

void invert(const Package& package, std::vector<std::uint8_t>& bytes) {
  for (const std::uint64_t offset : package.flip) {
    if (offset >= bytes.size()) {
      throw ScenarioError(package.path + ".flip", std::to_string(offset) +
                                                      " is behind the end of " +
                                                      std::to_string(bytes.size()) + " bytes");
    }
    std::uint8_t& byte = bytes[static_cast<std::size_t>(offset)];
    byte = static_cast<std::uint8_t>(~byte);
  }
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

std::vector<std::uint8_t> makeInstaller(const Package& package) {
  std::vector<std::uint8_t> bytes = readBytes(package);
  cut(package, bytes);
  if (package.keepEnd) keepEnd(package, bytes);
  if (package.length) setLength(static_cast<std::size_t>(*package.length), bytes);
  invert(package, bytes);
  return bytes;
}

}  // namespace zev::scenario
