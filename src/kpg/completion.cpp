#include "kpg/completion.h"

namespace {

// Within single quotes of a shell.
std::string quoted(const std::string& text) {
  std::string out = "'";
  for (const char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}

// What zsh would read as the end of a description.
std::string escaped(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '[' || c == ']' || c == ':' || c == '\\') out += '\\';
    out += c;
  }
  return out;
}

std::string joined(const std::vector<std::string>& words) {
  std::string out;
  for (const std::string& word : words) out += (out.empty() ? "" : " ") + word;
  return out;
}

// Cases of COMMAND:THE WORD BEFORE after which only certain words can come.
std::string bashValues(const std::vector<CommandSummary>& commands) {
  std::string out;
  const auto add = [&](const std::string& before, const std::vector<std::string>& values) {
    if (!values.empty()) out += "    " + before + ") words='" + joined(values) + "' ;;\n";
  };
  for (const CommandSummary& command : commands) {
    add(command.name + ":" + command.name, command.words);
    for (const auto& option : command.options)
      for (const std::string& name : option.names) add(command.name + ":" + name, option.values);
  }
  return out;
}

// What zsh offers as the value.
std::string zshValues(const std::vector<std::string>& values) {
  return values.empty() ? "_files" : "(" + joined(values) + ")";
}

}  // namespace

std::string bashCompletion(const std::vector<CommandSummary>& commands) {
  std::vector<std::string> names;
  for (const CommandSummary& command : commands) names.push_back(command.name);
  std::string out =
      "# Completion of kpg for bash.\n"
      "_kpg() {\n"
      "  local word=${COMP_WORDS[COMP_CWORD]} words=\n"
      "  case ${COMP_WORDS[1]}:${COMP_WORDS[COMP_CWORD-1]} in\n" +
      bashValues(commands) +
      "  esac\n"
      "  if [ -n \"$words\" ]; then :\n"
      "  elif [ \"$COMP_CWORD\" = 1 ]; then\n"
      "    words='" +
      joined(names) +
      " --help --version'\n"
      "  elif [ \"${word#-}\" = \"$word\" ]; then\n"
      "    mapfile -t COMPREPLY < <(compgen -f -- \"$word\")\n"
      "    return\n"
      "  else\n"
      "    case ${COMP_WORDS[1]} in\n";
  for (const CommandSummary& command : commands) {
    out += "      " + command.name + ") words='";
    std::vector<std::string> options;
    for (const auto& option : command.options) options.insert(options.end(), option.names.begin(), option.names.end());
    out += joined(options) + "' ;;\n";
  }
  return out +
         "    esac\n"
         "  fi\n"
         "  mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$word\")\n"
         "}\n"
         "complete -o filenames -F _kpg kpg\n";
}

std::string zshCompletion(const std::vector<CommandSummary>& commands) {
  std::string out =
      "#compdef kpg\n"
      "local -a commands\n"
      "commands=(\n";
  for (const CommandSummary& command : commands)
    out += "  " + quoted(command.name + ":" + escaped(command.about)) + "\n";
  out +=
      ")\n"
      "if (( CURRENT == 2 )); then\n"
      "  _describe command commands\n"
      "  return\n"
      "fi\n"
      "case $words[2] in\n";
  for (const CommandSummary& command : commands) {
    out += "  " + command.name + ") _arguments";
    for (const auto& option : command.options)
      for (const std::string& name : option.names)
        out += " " + quoted("*" + name + "[" + escaped(option.help) + "]" +
                            (option.hasValue ? ":value:" + zshValues(option.values) : ""));
    out += " '" + (command.words.empty() ? "*:file:_files" : "1:word:" + zshValues(command.words)) + "' ;;\n";
  }
  return out + "esac\n";
}

std::string fishCompletion(const std::vector<CommandSummary>& commands) {
  std::string out = "# Completion of kpg for fish.\n";
  for (const CommandSummary& command : commands) {
    out += "complete -c kpg -n __fish_use_subcommand -f -a " + command.name + " -d " + quoted(command.about) + "\n";
    for (const auto& option : command.options) {
      out += "complete -c kpg -n '__fish_seen_subcommand_from " + command.name + "'";
      for (const std::string& name : option.names)
        out += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
      if (!option.values.empty()) out += " -f -a " + quoted(joined(option.values));
      out += (option.hasValue ? " -r" : "") + (" -d " + quoted(option.help)) + "\n";
    }
    if (!command.words.empty())
      out += "complete -c kpg -n '__fish_seen_subcommand_from " + command.name + "' -f -a " +
             quoted(joined(command.words)) + "\n";
  }
  return out;
}
