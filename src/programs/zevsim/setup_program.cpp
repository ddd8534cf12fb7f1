#include "programs/zevsim/setup_program.h"

#include <functional>
#include <string_view>
#include <utility>
#include <variant>

#include "wizard/setup.h"

namespace zev::simulator {
namespace {

using FixedPath = FixedText<256>;

/// A global of the program, whatever its type.
using GlobalMember = std::variant<std::uint8_t Globals::*, std::int16_t Globals::*,
                                  std::int32_t Globals::*, Text Globals::*, FixedPath Globals::*>;

struct GlobalRow {
  std::string_view name;
  GlobalMember member;
};

// clang-format off
const GlobalRow globalRows[] = {
    {"gCurrentPage", &Globals::gCurrentPage},
    {"gInstallDir", &Globals::gInstallDir},
    {"gTempDir", &Globals::gTempDir},
    {"gWinDir", &Globals::gWinDir},
    {"gProductExe", &Globals::gProductExe},
    {"gOSClass", &Globals::gOSClass},
    {"gVersionNT62", &Globals::gVersionNT62},
    {"gOptRedist", &Globals::gOptRedist},
    {"gOptStartMenu", &Globals::gOptStartMenu},
    {"gOptDesktop", &Globals::gOptDesktop},
    {"gUserDir", &Globals::gUserDir},
    {"gUserData", &Globals::gUserData},
    {"gUserDirAlt", &Globals::gUserDirAlt},
    {"gUserDataAlt", &Globals::gUserDataAlt},
    {"gLanguage", &Globals::gLanguage},
    {"gInstalledDir", &Globals::gInstalledDir},
    {"gStartMenuDir", &Globals::gStartMenuDir},
    {"gProductVersion", &Globals::gProductVersion},
};
// clang-format on

const GlobalRow* findRow(std::string_view name) {
  for (const GlobalRow& row : globalRows) {
    if (row.name == name) return &row;
  }
  return nullptr;
}

/// Texts are trimmed, as every reader of them does.
struct Reader {
  const Globals& globals;

  PropertyValue operator()(Text Globals::*member) const { return Text(trim(globals.*member)); }
  PropertyValue operator()(FixedPath Globals::*member) const { return (globals.*member).trimmed(); }
  template <typename Number>
  PropertyValue operator()(Number Globals::*member) const {
    return std::int32_t{globals.*member};
  }
};

/// True if the value has the type of the global and fits into it.
struct Writer {
  Globals& globals;
  const PropertyValue& value;

  bool operator()(Text Globals::*member) const { return assignText(globals.*member); }
  bool operator()(FixedPath Globals::*member) const { return assignText(globals.*member); }
  template <typename Number>
  bool operator()(Number Globals::*member) const {
    const auto* number = std::get_if<std::int32_t>(&value);
    if (number == nullptr || !std::in_range<Number>(*number)) return false;
    globals.*member = static_cast<Number>(*number);
    return true;
  }

 private:
  template <typename Target>
  bool assignText(Target& target) const {
    const auto* text = std::get_if<Text>(&value);
    if (text == nullptr) return false;
    target = *text;
    return true;
  }
};

class SetupProgram final : public PlayedProgram {
 public:
  explicit SetupProgram(Platform& platform) : setup_(platform) {}

  void start() override { setup_.start(); }
  std::vector<Form*> forms() override { return setup_.forms(); }

  std::optional<PropertyValue> global(std::string_view name) override {
    const GlobalRow* row = findRow(name);
    if (row == nullptr) return std::nullopt;
    return std::visit(Reader{setup_.globals()}, row->member);
  }

  bool setGlobal(std::string_view name, const PropertyValue& value) override {
    const GlobalRow* row = findRow(name);
    return row != nullptr && std::visit(Writer{setup_.globals(), value}, row->member);
  }

 private:
  Setup setup_;
};

}  // namespace

std::unique_ptr<PlayedProgram> makeSetupProgram(Platform& platform) {
  return std::make_unique<SetupProgram>(platform);
}

}  // namespace zev::simulator
