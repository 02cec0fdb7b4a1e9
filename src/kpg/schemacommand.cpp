// kpg schema: a JSON schema of page sources, for editors.
#include <memory>

#include "kit/files.h"
#include "kit/source/pageschema.h"
#include "kpg/commands.h"

void addSchemaCommand(CommandLine& line) {
  auto output = std::make_shared<std::string>("-");
  KpgCommand command = line.command("schema", "Print a JSON schema of page sources, for editors that know YAML");
  command.add("-o,--out", *output, "The file to write; standard output by default").type("FILE.json");
  command.runs([output] {
    const std::string schema = pageSchema();
    writeFile(*output, schema.data(), schema.size());
  });
}
