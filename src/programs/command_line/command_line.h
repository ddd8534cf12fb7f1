#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
class Validator;
}  // namespace CLI

namespace zev::command_line {

/// What a command line lacks that no option by itself asks for; "a package" is told as
/// "a package is required".
class Missing : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// An option or a word that a command takes. It lives as long as its command line.
class Option {
 public:
  explicit Option(CLI::Option& option) : option_(&option) {}

  Option& required();
  /// What the help calls its value.
  Option& typeName(const char* name);
  /// The help shows what it is if it is not given.
  Option& showsDefault();
  /// Refuses numbers out of these bounds, which are good themselves. The help tells them, or `told`
  /// instead.
  Option& within(int least, int most, const char* told = nullptr);
  Option& within(double least, double most, const char* told = nullptr);
  /// Refuses another option without this one.
  Option& needs(const Option& other);

 private:
  Option& held(CLI::Validator bounds, const char* told);

  CLI::Option* option_;
};

/// What a program, or one command of it, takes. Names that begin with dashes are options, others
/// stand for words by their place. What is taken is written to variables of the caller's, which
/// outlive the reading.
class Command {
 public:
  explicit Command(CLI::App& app) : app_(&app) {}

  Option flag(const char* name, bool& taken, const char* help);
  Option option(const char* name, std::string& taken, const char* help);
  Option option(const char* name, int& taken, const char* help);
  Option option(const char* name, double& taken, const char* help);
  Option option(const char* name, std::optional<double>& taken, const char* help);
  /// A path, in UTF-8.
  Option file(const char* name, std::filesystem::path& taken, const char* help);
  Option file(const char* name, std::optional<std::filesystem::path>& taken, const char* help);
  /// Words with commas between them, each one of `known`.
  Option words(const char* name, std::vector<std::string>& taken,
               const std::vector<std::string>& known, const char* help);

  /// What is done once its words are taken; it may throw Missing.
  void then(std::function<void()> work);

 protected:
  CLI::App* app_;

 private:
  Option fileOf(const char* name, std::function<void(std::filesystem::path)> take,
                const char* help);
};

/// What came of reading.
enum class Outcome {
  Taken,
  Helped,  ///< the help was printed
  Refused  ///< why the words make no sense was printed
};

/// A program's command line: its own options, and its commands, of which one has to be given if
/// there are any.
class CommandLine : public Command {
 public:
  CommandLine(const char* program, const char* description);
  ~CommandLine();

  /// Another command of the program.
  Command command(const char* name, const char* help);
  /// Stands below the help.
  void footer(const char* text);
  /// Reads the words behind the program's name, in UTF-8. Help goes to `out`, a refusal to `err`.
  /// Exceptions of the work but Missing are passed on.
  Outcome read(const std::vector<std::string>& words, std::ostream& out, std::ostream& err);

 private:
  explicit CommandLine(std::unique_ptr<CLI::App> app);
  void readWords(const std::vector<std::string>& words);

  std::unique_ptr<CLI::App> own_;
};

/// The words behind a program's name.
std::vector<std::string> wordsOf(int argc, char** argv);

}  // namespace zev::command_line
