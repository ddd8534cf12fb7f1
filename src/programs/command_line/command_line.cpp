#include "programs/command_line/command_line.h"

#include <CLI/CLI.hpp>

namespace zev::command_line {

Option& Option::required() {
  option_->required();
  return *this;
}

Option& Option::typeName(const char* name) {
  option_->type_name(name);
  return *this;
}

Option& Option::showsDefault() {
  option_->capture_default_str();
  return *this;
}

Option& Option::within(int least, int most, const char* told) {
  return held(CLI::Range(least, most), told);
}

Option& Option::within(double least, double most, const char* told) {
  return held(CLI::Range(least, most), told);
}

Option& Option::held(CLI::Validator bounds, const char* told) {
  option_->check(told ? bounds.description(told) : bounds);
  return *this;
}

Option& Option::needs(const Option& other) {
  option_->needs(other.option_);
  return *this;
}

Option Command::flag(const char* name, bool& taken, const char* help) {
  return Option(*app_->add_flag(name, taken, help));
}

Option Command::option(const char* name, std::string& taken, const char* help) {
  return Option(*app_->add_option(name, taken, help));
}

Option Command::option(const char* name, int& taken, const char* help) {
  return Option(*app_->add_option(name, taken, help));
}

Option Command::option(const char* name, double& taken, const char* help) {
  return Option(*app_->add_option(name, taken, help));
}

Option Command::option(const char* name, std::optional<double>& taken, const char* help) {
  return Option(*app_->add_option(name, taken, help));
}

Option Command::file(const char* name, std::filesystem::path& taken, const char* help) {
  return fileOf(
      name, [&taken](std::filesystem::path path) { taken = std::move(path); }, help);
}

Option Command::file(const char* name, std::optional<std::filesystem::path>& taken,
                     const char* help) {
  return fileOf(
      name, [&taken](std::filesystem::path path) { taken = std::move(path); }, help);
}

Option Command::fileOf(const char* name, std::function<void(std::filesystem::path)> take,
                       const char* help) {
  const auto given = [take = std::move(take)](const std::string& utf8) {
    take(std::u8string(utf8.begin(), utf8.end()));
  };
  return Option(*app_->add_option_function<std::string>(name, given, help)->type_name("FILE"));
}

Option Command::words(const char* name, std::vector<std::string>& taken,
                      const std::vector<std::string>& known, const char* help) {
  return Option(*app_->add_option(name, taken, help)
                     ->delimiter(',')
                     ->allow_extra_args(false)
                     ->check(CLI::IsMember(known).description("")));
}

void Command::then(std::function<void()> work) { app_->callback(std::move(work)); }

CommandLine::CommandLine(const char* program, const char* description)
    : CommandLine(std::make_unique<CLI::App>(description, program)) {}

CommandLine::CommandLine(std::unique_ptr<CLI::App> app) : Command(*app), own_(std::move(app)) {}

CommandLine::~CommandLine() = default;

Command CommandLine::command(const char* name, const char* help) {
  app_->require_subcommand(0, 1);
  return Command(*app_->add_subcommand(name, help));
}

void CommandLine::footer(const char* text) { app_->footer(text); }

Outcome CommandLine::read(const std::vector<std::string>& words, std::ostream& out,
                          std::ostream& err) {
  try {
    readWords(words);
    return Outcome::Taken;
  } catch (const CLI::ParseError& error) {
    return app_->exit(error, out, err) == 0 ? Outcome::Helped : Outcome::Refused;
  } catch (const Missing& missing) {
    app_->exit(CLI::RequiredError(missing.what()), out, err);
    return Outcome::Refused;
  }
}

void CommandLine::readWords(const std::vector<std::string>& words) {
  app_->parse(std::vector<std::string>(words.rbegin(), words.rend()));
  // Asked for here, a word that is no command has been named by then.
  const bool hasCommands = !app_->get_subcommands({}).empty();
  if (hasCommands && app_->get_subcommands().empty()) throw Missing("A subcommand");
}

std::vector<std::string> wordsOf(int argc, char** argv) {
  return std::vector<std::string>(argv + 1, argv + argc);
}

}  // namespace zev::command_line
