#include "kpg/commandline.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <iterator>
#include <new>
#include <sstream>
#include <utility>

#include "kit/suggest.h"

namespace {

constexpr char kOneOf[] = "one of:";

// All values that an option can have, if there is such a list.
std::vector<std::string> valuesOf(CLI::Option* option) try {
  std::istringstream name(option->get_validator()->get_name());
  std::string word, of;
  if (!(name >> word >> of) || word + " " + of != kOneOf) return {};
  return {std::istream_iterator<std::string>(name), {}};
} catch (const CLI::OptionNotFound&) {
  return {};
}

std::vector<std::string> namesOf(const std::vector<CommandSummary>& commands) {
  std::vector<std::string> names;
  for (const CommandSummary& command : commands) names.push_back(command.name);
  return names;
}

// What is wrong with the words of a command.
std::string problem(CLI::App& command, const CommandSummary& summary, const CLI::ParseError& error) {
  for (const std::string& word : command.remaining()) {
    if (word.size() < 2 || word[0] != '-') continue;
    std::vector<std::string> names;
    for (const auto& option : summary.options) names.insert(names.end(), option.names.begin(), option.names.end());
    const std::string name = word.substr(0, word.find('='));
    return "there is no option '" + name + "'" + suggestion(name, names);
  }
  if (!command.remaining().empty()) return "there is one word too many, '" + command.remaining().front() + "'";
  if (dynamic_cast<const CLI::RequiredError*>(&error))
    for (const CLI::Option* option : command.get_options())
      if (option->get_positional() && option->get_required() && option->empty())
        return "a word is missing, " + option->get_type_name();
  std::string text = error.what();
  for (const CLI::Option* option : command.get_options())
    if (option->get_positional() && text.starts_with(option->get_name() + ": "))
      text.erase(0, option->get_name().size() + 2);
  return text;
}

}  // namespace

KpgOption& KpgOption::required() {
  option->required();
  return *this;
}

KpgOption& KpgOption::type(const char* name) {
  option->type_name(name);
  return *this;
}

KpgOption& KpgOption::group(const char* heading) {
  option->group(heading);
  return *this;
}

KpgOption& KpgOption::between(size_t least, size_t most) {
  option->check(CLI::Range(least, most));
  return *this;
}

KpgOption& KpgOption::notNegative() {
  option->check(CLI::Validator(
      [](const std::string& value) {
        double number;
        return CLI::detail::lexical_cast(value, number) && number >= 0 ? "" : "'" + value + "' is no number from 0 up";
      },
      ""));
  return *this;
}

KpgOption& KpgOption::check(std::string (*problemOf)(const std::string& value)) {
  option->check(CLI::Validator(problemOf, ""));
  return *this;
}

// The library keeps no list of values; the check's name has it, for summaries.
KpgOption& KpgOption::oneOf(const std::vector<std::string>& values, const std::string& noun) {
  const auto problemOf = [values, noun](const std::string& value) {
    if (std::find(values.begin(), values.end(), value) != values.end()) return std::string();
    std::string text = "there is no " + noun + " '" + value + "'; there are";
    for (const std::string& each : values) text += " " + each;
    return text;
  };
  std::string name = kOneOf;
  for (const std::string& value : values) name += " " + value;
  option->check(CLI::Validator(problemOf, "", name));
  return *this;
}

KpgOption& KpgOption::excludes(const KpgOption& other) {
  option->excludes(other.option);
  return *this;
}

KpgOption KpgCommand::add(const char* name, std::string& into, const char* help) {
  return KpgOption(command->add_option(name, into, help));
}

KpgOption KpgCommand::add(const char* name, std::optional<std::string>& into, const char* help) {
  return KpgOption(command->add_option(name, into, help));
}

KpgOption KpgCommand::add(const char* name, std::vector<std::string>& into, const char* help) {
  return KpgOption(command->add_option(name, into, help));
}

KpgOption KpgCommand::add(const char* name, size_t& into, const char* help) {
  return KpgOption(command->add_option(name, into, help));
}

KpgOption KpgCommand::add(const char* name, double& into, const char* help) {
  return KpgOption(command->add_option(name, into, help));
}

KpgOption KpgCommand::flag(const char* name, bool& into, const char* help) {
  return KpgOption(command->add_flag(name, into, help));
}

KpgOption KpgCommand::each(const char* name, std::function<void(const std::string&)> take, const char* help) {
  return KpgOption(command->add_option_function<std::string>(name, take, help)->trigger_on_parse());
}

void KpgCommand::runs(std::function<void()> work) { command->callback(std::move(work)); }

void KpgCommand::refuse(const std::string& problem) { throw CLI::ValidationError(problem); }

CommandLine::CommandLine(const char* name, const char* version, const char* about)
    : app(std::make_unique<CLI::App>(about, name)) {
  app->set_version_flag("--version", std::string(name) + " " + version, "Print the version and exit");
  app->require_subcommand(1);
  app->allow_windows_style_options(false);  // a word that begins with a slash is a file everywhere
}

CommandLine::~CommandLine() = default;

KpgCommand CommandLine::command(const char* name, const char* about, int errorStatus) {
  errorStatuses[name] = errorStatus;
  return KpgCommand(app->add_subcommand(name, about));
}

std::vector<CommandSummary> CommandLine::summaries() const {
  std::vector<CommandSummary> all;
  for (CLI::App* command : app->get_subcommands(nullptr)) {
    CommandSummary summary{command->get_name(), command->get_description(), {}, {}};
    for (CLI::Option* option : command->get_options()) {
      if (option->get_positional()) {
        summary.words = valuesOf(option);
        continue;
      }
      std::vector<std::string> names;
      for (const std::string& name : option->get_snames()) names.push_back("-" + name);
      for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
      summary.options.push_back(
          {names, option->get_description(), option->get_items_expected_max() > 0, valuesOf(option)});
    }
    all.push_back(std::move(summary));
  }
  return all;
}

int CommandLine::run(const std::vector<std::string>& words) {
  const std::vector<CommandSummary> commands = summaries();
  const std::string program = app->get_name(), ending = program + " --help lists the commands\n";
  if (words.empty()) {
    std::cerr << program << ": a command is missing\n" << ending;
    return 1;
  }
  const auto isFirstWord = [&](const CommandSummary& command) { return command.name == words[0]; };
  const auto command = std::find_if(commands.begin(), commands.end(), isFirstWord);
  if (words[0][0] != '-' && command == commands.end()) {
    std::cerr << program << ": there is no command '" << words[0] << "'" << suggestion(words[0], namesOf(commands))
              << "\n"
              << ending;
    return 1;
  }
  const int failed = command == commands.end() ? 1 : errorStatuses.at(command->name);
  try {
    app->parse(std::vector<std::string>(words.rbegin(), words.rend()));  // it takes them from the end
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) return app->exit(e);  // it has printed what was asked for
    if (command == commands.end()) {
      std::cerr << program << ": there is no option '" << words[0] << "'"
                << suggestion(words[0], {"--help", "--version"}) << "\n"
                << ending;
      return 1;
    }
    std::cerr << program << " " << command->name << ": " << problem(*app->get_subcommand(command->name), *command, e)
              << "\n"
              << program << " " << command->name << " --help lists its options\n";
    return failed;
  } catch (const CommandFailure& e) {
    if (*e.what()) std::cerr << e.what() << "\n";
    return e.status;
  } catch (const std::bad_alloc&) {
    std::cerr << "out of memory\n";
    return failed;
  } catch (const std::exception& e) {
    if (*e.what()) std::cerr << e.what() << "\n";
    return failed;
  }
  return 0;
}
