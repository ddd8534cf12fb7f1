#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <vector>

#include "simulated/simulated_machine.h"
#include "support/raised.h"
#include "support/temporary_folder.h"

namespace zev::simulated {

/// A person who does what a test tells, one thing each time the program waits or lets events
/// through, and answers boxes from a queue, then by their default button.
class ToldPerson final : public Person {
 public:
  std::deque<std::function<void()>> whenWaiting;
  std::deque<std::function<void()>> inPasses;
  std::deque<BoxAnswer> answers;
  std::deque<Text> inputs;
  std::vector<Box> boxes;
  std::function<void()> beforeAnswer;
  int passes = 0;

  bool next() override { return doFirst(whenWaiting); }
  void passBegins() override { ++passes; }
  bool duringPass() override { return doFirst(inPasses); }

  BoxAnswer answer(const Box& box) override {
    boxes.push_back(box);
    if (beforeAnswer) beforeAnswer();
    if (answers.empty()) return defaultAnswer(box.style);
    const BoxAnswer answer = answers.front();
    answers.pop_front();
    return answer;
  }

  Text input(TextView, TextView, TextView initial) override {
    if (inputs.empty()) return Text(initial);
    Text text = inputs.front();
    inputs.pop_front();
    return text;
  }

 private:
  static bool doFirst(std::deque<std::function<void()>>& things) {
    if (things.empty()) return false;
    const std::function<void()> first = things.front();
    things.pop_front();
    first();
    return true;
  }
};

/// A machine with a program on it.
class MachineTest : public testing::Test {
 protected:
  MachineTest() { machine.startProgram(); }

  Platform& platform() { return machine.platform(); }
  Files& files() { return machine.platform().files; }
  FileSystem& system() { return machine.fileSystem(); }

  static FileSettings denying(const Denial& deny) {
    FileSettings settings;
    settings.deny = deny;
    return settings;
  }
  static std::span<const std::uint8_t> bytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
  }
  std::string content(TextView path) const {
    const auto read = machine.disks().read(path);
    return read ? std::string(read->begin(), read->end()) : "(none)";
  }

  ToldPerson person;
  TranscriptLog log{true};
  SimulatedMachine machine{person, log};
};

/// A folder of the host that is gone behind the test.
class HostFolder {
 public:
  const std::filesystem::path& path() const { return folder_.path(); }
  std::string read(const std::filesystem::path& file) const {
    std::ifstream in(path() / file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  /// Names of what lies in a folder of it, sorted.
  std::vector<std::string> names(const std::filesystem::path& folder = {}) const {
    std::vector<std::string> names;
    for (const auto& each : std::filesystem::directory_iterator(path() / folder)) {
      names.push_back(each.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  void write(const std::filesystem::path& file, std::string_view text) const {
    std::filesystem::create_directories((path() / file).parent_path());
    std::ofstream(path() / file, std::ios::binary) << text;
  }

 private:
  test::TemporaryFolder folder_;
};

}  // namespace zev::simulated
