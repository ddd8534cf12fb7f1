#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "state/program.h"
#include "support/table.h"
#include "system/on_a_machine.h"

namespace zev {

/// Writes what is reported into the transcript, between the calls of the platform.
class LoggedReport final : public RunReport {
 public:
  explicit LoggedReport(simulated::Transcript& transcript) : transcript_(transcript) {}
  void setRunStep(std::int32_t step) override { add("RunStep", step); }
  void showStatus(TextView text) override { add("Status", toUtf8(text)); }

 private:
  void add(const char* name, simulated::Event argument) {
    transcript_.add({{"event", "call"},
                     {"name", name},
                     {"arguments", simulated::Event::list({std::move(argument)})}});
  }
  simulated::Transcript& transcript_;
};

/// A machine that keeps every call in its order, with the product's directory chosen.
class WatchedMachine : public OnAMachine {
 public:
  WatchedMachine() : OnAMachine(true) {
    globals().gInstallDir = install;
    globals().gProductExe = u"Screen Recorder 6";
  }

  /// The calls of these names, and the reports "RunStep" and "Status", one line each: the name and
  /// the arguments behind it, without the handle of a registry key.
  std::vector<std::string> trace(const std::set<std::string>& names) const {
    std::vector<std::string> lines;
    for (const simulated::Event& event : transcript.of("call")) {
      if (names.count(event.at("name").text()) == 1) lines.push_back(asLine(event));
    }
    return lines;
  }

  /// A cell of a table, with the directory in its place.
  static std::string filled(std::string cell) {
    const std::string mark = "{gInstallDir}";
    for (auto place = cell.find(mark); place != std::string::npos; place = cell.find(mark)) {
      cell.replace(place, mark.size(), toUtf8(install));
    }
    return cell;
  }

  /// The text of a value of the registry, "(none)" if there is none.
  std::string valueOf(RegistryKey hive, TextView key, TextView name) {
    const auto value = machine.registry().value(hive, key, name);
    return value ? toUtf8(value->text()) : "(none)";
  }

  static constexpr TextView install = u"C:\\My Own Apps\\ZEV";
  LoggedReport report{transcript};

 private:
  static std::string asLine(const simulated::Event& event) {
    std::string text = event.at("name").text();
    const bool hasHandle = text == "RegSetValueExA";
    bool first = true;
    for (const simulated::Event& each : event.at("arguments")) {
      const bool skipped = first && hasHandle;
      first = false;
      if (skipped) continue;
      text += " | " + (each.isText() ? each.text() : each.dump());
    }
    return text;
  }
};

}  // namespace zev
