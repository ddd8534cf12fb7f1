// What is kept in the system: value files, the registry's text, shortcuts, and the directory that a
// person types.

#include <map>
#include <string>
#include <vector>

#include "code_page/code_page.h"
#include "destination/on_the_page.h"
#include "fuzz/target.h"
#include "scenario/scenario.h"
#include "simulated/put_text.h"
#include "simulated/shell_link.h"
#include "simulated/state_report.h"
#include "system/on_a_machine.h"
#include "system/value_files.h"

namespace zev::fuzz {
namespace {

using namespace simulated;

constexpr TextView folder = u"C:\\values";

/// The items of a text file, read the slow way, joined as a value is.
std::string itemsJoined(std::string text) {
  std::string joined;
  const auto trimmed = [](std::string item) {
    while (!item.empty() && item.back() == ' ') item.pop_back();
    while (!item.empty() && item.front() == ' ') item.erase(item.begin());
    return item;
  };
  text = text.substr(0, text.find('\x1A'));
  while (!text.empty()) {
    while (!text.empty() && text.front() == ' ') text.erase(text.begin());
    std::string item;
    const bool quoted = !text.empty() && text.front() == '"';
    if (quoted) text.erase(text.begin());
    while (quoted && !text.empty() && text.front() != '"') {
      item += text.front();
      text.erase(text.begin());
    }
    while (!text.empty() && text.front() != ',' && text.front() != '\r' && text.front() != '\n') {
      if (!quoted) item += text.front();
      text.erase(text.begin());
    }
    const bool lineEnds = text.starts_with("\r\n");
    if (!text.empty()) text.erase(0, lineEnds ? 2 : 1);
    joined = trimmed(joined) + trimmed(item);
  }
  return trimmed(joined);
}

// ---- the registry's text

/// What a key holds, by name: the type and the bytes of a value.
using Values = std::map<Text, std::pair<std::uint32_t, std::vector<std::uint8_t>>>;
using Keys = std::map<Text, Values>;

std::vector<std::uint8_t> storedBytes(const RegistryValue& value) {
  std::vector<std::uint8_t> bytes = value.bytes;
  for (const char16_t unit : value.isText() ? value.units : Text()) {
    bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
  }
  return bytes;
}

void collect(const RegistryNode& node, const Text& path, Keys& keys) {
  if (!node.values.empty() || node.keys.empty()) {
    Values& values = keys[path];
    for (const auto& [upper, named] : node.values) {
      values[named.name] = {named.value.type, storedBytes(named.value)};
    }
  }
  for (const auto& [upper, child] : node.keys)
    collect(*child, join(path, u"\\", child->name), keys);
}

/// Reads the text as an editor would, one line behind the other.
class RegistryTextReader {
 public:
  explicit RegistryTextReader(Text text) {
    for (std::size_t at = text.find(u"\\\r\n  "); at != Text::npos;
         at = text.find(u"\\\r\n  ", at)) {
      text.erase(at, 5);
    }
    text_ = std::move(text);
  }

  Keys read() {
    line();
    while (place_ < text_.size()) {
      const Text each = line();
      if (each.starts_with(u'[')) {
        values_ = &keys_[each.substr(1, each.size() - 2)];
      } else if (!each.empty()) {
        require(values_ != nullptr, "a value without a key");
        readValue(each);
      }
    }
    return std::move(keys_);
  }

 private:
  Text line() {
    const std::size_t end = text_.find(u"\r\n", place_);
    require(end != Text::npos, "a line without an end");
    const Text found = text_.substr(place_, end - place_);
    place_ = end + 2;
    return found;
  }

  static Text quoted(TextView line, std::size_t& at) {
    Text found;
    for (++at; line.at(at) != u'"'; ++at) {
      if (line.at(at) == u'\\') ++at;
      found += line.at(at);
    }
    ++at;
    return found;
  }

  void readValue(const Text& line) {
    std::size_t at = 0;
    Text name;
    if (line.front() == u'"') {
      name = quoted(line, at);
    } else {
      ++at;
    }
    require(line.at(at) == u'=', "no value behind its name");
    ++at;
    const bool text = line.at(at) == u'"';
    auto& [type, bytes] = (*values_)[name];
    if (text) {
      type = registry_type::text;
      for (const char16_t unit : quoted(line, at) + u'\0') {
        bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
        bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
      }
      return;
    }
    readBytes(toUtf8(line.substr(at)), type, bytes);
  }

  static void readBytes(const std::string& written, std::uint32_t& type,
                        std::vector<std::uint8_t>& bytes) {
    const std::string digits = written.substr(written.find(':') + 1);
    if (written.starts_with("dword:")) {
      type = registry_type::number;
      const auto number = static_cast<std::uint32_t>(std::stoul(digits, nullptr, 16));
      for (int each = 0; each < 4; ++each) {
        bytes.push_back(static_cast<std::uint8_t>(number >> (8 * each)));
      }
      return;
    }
    type = written.starts_with("hex(")
               ? static_cast<std::uint32_t>(std::stoul(written.substr(4), nullptr, 16))
               : registry_type::binary;
    for (std::size_t at = 0; at < digits.size(); at += 3) {
      bytes.push_back(static_cast<std::uint8_t>(std::stoul(digits.substr(at, 2), nullptr, 16)));
    }
  }

  Text text_;
  std::size_t place_ = 0;
  Keys keys_;
  Values* values_ = nullptr;
};

Text keyName(Input& input) {
  Text name = input.text(12);
  std::erase(name, u'\\');
  return name.empty() ? Text(u"k") : name;
}

RegistryValue anyValue(Input& input) {
  switch (input.below(4)) {
    case 0:
      return RegistryValue::ofText(input.text(60));
    case 1:
      return RegistryValue::ofNumber(input.number());
    case 2:
      return RegistryValue::ofText(input.text(60), 2);
    default: {
      const Data bytes = input.bytes(input.below(60));
      return RegistryValue::ofBytes(3, {bytes.begin(), bytes.end()}, 1252);
    }
  }
}

// ---- shortcuts

/// Reads a shortcut's file.
class LinkReader {
 public:
  explicit LinkReader(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {}

  std::uint32_t number(std::size_t offset, int count = 4) const {
    std::uint32_t value = 0;
    for (int each = count - 1; each >= 0; --each) {
      value = value << 8 | bytes_.at(offset + static_cast<std::size_t>(each));
    }
    return value;
  }
  std::string ansi(std::size_t offset) const {
    std::string text;
    while (bytes_.at(offset) != 0) text += static_cast<char>(bytes_.at(offset++));
    return text;
  }
  Text string(std::uint32_t flag, std::size_t& place) const {
    Text text;
    if ((number(20) & flag) == 0) return text;
    const std::uint32_t count = number(place, 2);
    for (place += 2; text.size() < count; place += 2) {
      text += static_cast<char16_t>(number(place, 2));
    }
    return text;
  }
  std::size_t size() const { return bytes_.size(); }

 private:
  std::vector<std::uint8_t> bytes_;
};

}  // namespace

/// Any bytes as a value's file give the items that the slow way reads; any text that is written
/// stands there as it is, and nothing is left beside it.
void tryValueFile(Data data) {
  Input input(data);
  const Text written = input.text(40);
  const Data content = input.rest();
  OnAMachine on;
  putText(on.machine.disks(), join(folder, u"\\read"),
          {reinterpret_cast<const char*>(content.data()), content.size()});
  ValueFiles values(on.files(), on.program->platform.dialogs, *on.phrases);
  const Text read = values.ReadConf(folder, u"read", u"default");
  const std::string expected = itemsJoined({content.begin(), content.end()});
  require(on.machine.fileSystem().toAnsi(read) ==
              on.machine.fileSystem().toAnsi(on.machine.fileSystem().fromAnsi(expected)),
          "not the items");
  require(values.WriteConf(folder, u"written", written), "not written");
  require(on.textOf(join(folder, u"\\written")) == on.machine.fileSystem().toAnsi(written) + "\r\n",
          "not the text");
  require(on.machine.disks().names(folder)->size() == 2, "something is left beside it");
  require(on.person.boxes.empty(), "a box");
}

/// A registry of any keys and values is in the text that an editor reads.
void tryRegistryText(Data data) {
  Input input(data);
  RegistryTree registry;
  while (!input.empty()) {
    const RegistryKey hive = input.flag() ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
    const Text key = input.flag() ? join(keyName(input), u"\\", keyName(input)) : keyName(input);
    registry.setValue(hive, key, input.text(12), anyValue(input));
    if (input.byte() % 8 == 0) registry.createKey(hive, join(key, u"\\", keyName(input)));
  }
  Keys expected;
  for (const RegistryKey hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    collect(*registry.find(hive, {}), Text(hiveName(hive)), expected);
  }
  require(RegistryTextReader(registryEditorText(registry)).read() == expected, "another registry");
}

/// Any text as a scenario is one, or a mistake with its place.
void tryScenario(Data data) {
  try {
    scenario::parseScenario({reinterpret_cast<const char*>(data.data()), data.size()});
  } catch (const scenario::ScenarioError&) {
  }
}

/// Whatever is typed as a directory: if it is accepted it is there, on a fixed drive.
void tryDestination(Data data) {
  Input input(data);
  OnThePage page;
  static constexpr TextView fronts[] = {u"",     u"C:\\", u"D:\\", u"R:\\",
                                        u"E:\\", u"c:",   u"\\\\", u"C:\\P\\"};
  const Text front(fronts[input.below(std::size(fronts))]);
  bool accepted = false;
  try {
    accepted = page.check(front + input.text(60));
  } catch (const RuntimeError&) {
    return;
  }
  if (!accepted) {
    require(!page.person.boxes.empty() || page.directory().empty() || page.wizard.browsers > 0,
            "refused without a word");
    return;
  }
  const Text directory = page.directory();
  require(page.stands(directory), "accepted and not there");
  const auto drive = page.machine.disks().drive(directory.front());
  require(drive && drive->type == 3, "not on a fixed drive");
}

/// A shortcut of any texts, read back.
void tryShortcut(Data data) {
  Input input(data);
  static constexpr std::uint32_t pages[] = {1252, 932, 1254, 65001};
  const std::uint32_t page = pages[input.below(std::size(pages))];
  ShortcutProperties properties;
  properties.TargetPath = input.text(80);
  properties.Arguments = input.text(80);
  properties.WindowStyle = static_cast<std::int32_t>(input.number());
  const std::int32_t icon = static_cast<std::int16_t>(input.below(65536));
  const Text iconFile = input.text(40);
  properties.IconLocation = join(iconFile, u",", decimal(icon));
  properties.Description = input.text(80);
  properties.WorkingDirectory = input.text(80);
  const LinkReader link(shellLink(properties, page));
  const std::size_t info = link.number(0);
  require(link.ansi(info + link.number(info + 16)) == toCodePage(properties.TargetPath, page),
          "another target");
  require(static_cast<std::int32_t>(link.number(56)) == icon, "another icon");
  require(static_cast<std::int32_t>(link.number(60)) == properties.WindowStyle, "another style");
  std::size_t place = info + link.number(info);
  require(link.string(0x04, place) == properties.Description, "another description");
  require(link.string(0x10, place) == properties.WorkingDirectory, "another folder");
  require(link.string(0x20, place) == properties.Arguments, "other arguments");
  require(link.string(0x40, place) == iconFile, "another icon's file");
  require(link.number(place) == 0 && place + 4 == link.size(), "something behind it");
}

}  // namespace zev::fuzz
