// The command line of kpg: its commands, and the words and options that each takes.
//
// Only commandline.cpp includes the library that parses: to compile its header costs more than all of the commands.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

// Ends a command with that exit status, and the text on the error stream, if there is one.
struct CommandFailure : std::runtime_error {
  CommandFailure(int s, const std::string& text) : std::runtime_error(text), status(s) {}

  int status;
};

// A word or an option of a command.
class KpgOption {
 public:
  explicit KpgOption(CLI::Option* o) : option(o) {}

  KpgOption& required();
  KpgOption& type(const char* name);  // what the help calls its value
  KpgOption& group(const char* heading);
  KpgOption& between(size_t least, size_t most);
  KpgOption& notNegative();
  KpgOption& check(std::string (*problemOf)(const std::string& value));  // empty when there is none
  // `noun` is what an error calls such a value.
  KpgOption& oneOf(const std::vector<std::string>& values, const std::string& noun);
  KpgOption& excludes(const KpgOption& other);

 private:
  CLI::Option* option;
};

// A command. What its options are read into lives as long as what it runs, mostly by a std::shared_ptr there.
class KpgCommand {
 public:
  explicit KpgCommand(CLI::App* c) : command(c) {}

  // A name without a dash is a word of the command, a name with one an option.
  KpgOption add(const char* name, std::string& into, const char* help);
  KpgOption add(const char* name, std::optional<std::string>& into, const char* help);
  KpgOption add(const char* name, std::vector<std::string>& into, const char* help);
  KpgOption add(const char* name, size_t& into, const char* help);
  KpgOption add(const char* name, double& into, const char* help);
  KpgOption flag(const char* name, bool& into, const char* help);
  // An option that may come often: `take` gets each value, in the order of the command line.
  KpgOption each(const char* name, std::function<void(const std::string&)> take, const char* help);

  void runs(std::function<void()> work);

  // For `work`: ends the command as one whose words are wrong.
  [[noreturn]] static void refuse(const std::string& problem);

 private:
  CLI::App* command;
};

// What a command takes, as text, for those that describe the command line elsewhere.
struct CommandSummary {
  struct Option {
    std::vector<std::string> names;  // with their dashes
    std::string help;
    bool hasValue;
    std::vector<std::string> values;  // all that it can have; empty for the names of files and whatever else
  };
  std::string name, about;
  std::vector<Option> options;     // without the words
  std::vector<std::string> words;  // all that its words can be; empty for files and whatever else
};

class CommandLine {
 public:
  CommandLine(const char* name, const char* version, const char* about);
  ~CommandLine();

  // `errorStatus` is the exit status after an error: 2 for a command that answers by 0 or 1.
  KpgCommand command(const char* name, const char* about, int errorStatus = 1);
  std::vector<CommandSummary> summaries() const;

  // Parses what follows the program's name, runs the command and prints what went wrong; returns the exit status: 0,
  // that of errors, or a CommandFailure's.
  int run(const std::vector<std::string>& words);

 private:
  std::unique_ptr<CLI::App> app;
  std::map<std::string, int> errorStatuses;  // by command
};
