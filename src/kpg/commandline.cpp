#include "kpg/commandline.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <numeric>
#include <utility>

namespace {

// The fewest characters to insert, drop or change that make one word of the other.
size_t editDistance(const std::string& a, const std::string& b) {
  std::vector<size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < a.size(); ++i) {
    size_t diagonal = std::exchange(row[0], i + 1);
    for (size_t j = 0; j < b.size(); ++j) {
      const size_t changed = diagonal + (a[i] != b[j]);
      diagonal = row[j + 1];
      row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

std::string unknownCommand(const std::string& program, const std::string& word,
                           const std::vector<CommandSummary>& commands) {
  std::string text = program + ": there is no command '" + word + "'";
  const auto nearest = std::min_element(commands.begin(), commands.end(), [&](const auto& a, const auto& b) {
    return editDistance(word, a.name) < editDistance(word, b.name);
  });
  if (nearest != commands.end() && editDistance(word, nearest->name) <= 2)
    text += "; did you mean '" + nearest->name + "'?";
  return text + "\n" + program + " --help lists the commands\n";
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

KpgOption& KpgOption::check(std::string (*problemOf)(const std::string& value)) {
  option->check(CLI::Validator(problemOf, ""));
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

KpgOption KpgCommand::flag(const char* name, bool& into, const char* help) {
  return KpgOption(command->add_flag(name, into, help));
}

KpgOption KpgCommand::each(const char* name, std::function<void(const std::string&)> take, const char* help) {
  return KpgOption(command->add_option_function<std::string>(name, take, help)->trigger_on_parse());
}

void KpgCommand::runs(std::function<void()> work) { command->callback(std::move(work)); }

CommandLine::CommandLine(const char* name, const char* version, const char* about)
    : app(std::make_unique<CLI::App>(about, name)) {
  app->set_version_flag("--version", std::string(name) + " " + version, "Print the version and exit");
  app->require_subcommand(1);
}

CommandLine::~CommandLine() = default;

KpgCommand CommandLine::command(const char* name, const char* about) {
  return KpgCommand(app->add_subcommand(name, about));
}

std::vector<CommandSummary> CommandLine::summaries() const {
  std::vector<CommandSummary> all;
  for (const CLI::App* command : std::as_const(*app).get_subcommands(nullptr)) {
    CommandSummary summary{command->get_name(), command->get_description(), {}};
    for (const CLI::Option* option : command->get_options()) {
      if (option->get_positional()) continue;
      std::vector<std::string> names;
      for (const std::string& name : option->get_snames()) names.push_back("-" + name);
      for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
      summary.options.push_back({names, option->get_description(), option->get_items_expected_max() > 0});
    }
    all.push_back(std::move(summary));
  }
  return all;
}

int CommandLine::run(int argc, char** argv) {
  const std::vector<CommandSummary> commands = summaries();
  const auto isFirstWord = [&](const CommandSummary& command) { return command.name == argv[1]; };
  if (argc > 1 && argv[1][0] != '-' && std::none_of(commands.begin(), commands.end(), isFirstWord)) {
    std::cerr << unknownCommand(app->get_name(), argv[1], commands);
    return 1;
  }
  try {
    app->parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app->exit(e) == 0 ? 0 : 1;
  } catch (const std::exception& e) {
    if (*e.what()) std::cerr << e.what() << "\n";
    return 1;
  }
  return 0;
}
