#include "kpg/commandline.h"

#include <CLI/CLI.hpp>
#include <iostream>

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

CommandLine::CommandLine(const char* name, const char* about) : app(std::make_unique<CLI::App>(about, name)) {
  app->require_subcommand(1);
}

CommandLine::~CommandLine() = default;

KpgCommand CommandLine::command(const char* name, const char* about) {
  return KpgCommand(app->add_subcommand(name, about));
}

int CommandLine::run(int argc, char** argv) {
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
