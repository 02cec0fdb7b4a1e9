// kpg format: writes scripts in one style, also those in page sources.
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/language/formatbob.h"
#include "kit/lsp/formatting.h"
#include "kpg/commands.h"

namespace {

struct FormatOptions {
  std::vector<std::string> files;
  bool check = false, write = false;
};

bool isYaml(const std::string& file) { return file.ends_with(".yaml") || file.ends_with(".yml"); }

std::string textOf(const std::string& file) {
  if (isStandardOutput(file)) return {std::istreambuf_iterator<char>(std::cin), {}};
  if (!file.ends_with(".bob") && !isYaml(file))
    throw KitError(file, "is no script and no page source: those end in .bob, .yaml or .yml");
  const std::vector<uint8_t> bytes = readFile(file);
  return {bytes.begin(), bytes.end()};
}

// All files, those with errors as well; these are left as they are.
void format(FormatOptions options) {
  if (options.check && options.write) KpgCommand::refuse("--check only looks, and --write writes");
  if (options.files.empty()) options.files.push_back("-");
  std::vector<KitMessage> errors;
  size_t others = 0;
  for (const std::string& file : options.files) try {
      const std::string before = textOf(file);
      const std::string after = isYaml(file) ? formatPageScripts(file, before) : formatBob(before, file);
      const bool isSame = before == after;
      if (options.check) {
        if (!isSame) std::cout << file << "\n";
        others += !isSame;
      } else if (!options.write || isStandardOutput(file)) {
        std::cout << after;
      } else if (!isSame) {
        writeFile(file, after.data(), after.size());
        std::cout << file << " written\n";
      }
    } catch (const KitError& e) {
      errors.insert(errors.end(), e.messages.begin(), e.messages.end());
    }
  if (!errors.empty()) throw KitError(std::move(errors));
  if (others > 0) throw KitError("");
}

}  // namespace

void addFormatCommand(CommandLine& line) {
  auto options = std::make_shared<FormatOptions>();
  KpgCommand command = line.command("format", "Print scripts in one style, with the same code and comments");
  command
      .add(
          "files", options->files,
          "Scripts, and page sources for the scripts after a bar in them; - or none for a script on the standard input")
      .type("FILE.bob|PAGE.yaml");
  command.flag("--check", options->check,
               "Print nothing but the files that aren't in that style; status 1 if there are any");
  command.flag("-w,--write", options->write, "Write the files in place, and name those that have changed");
  command.runs([options] { format(*options); });
}
