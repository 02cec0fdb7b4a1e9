// kpg dump: a page becomes a page source again.
#include <iostream>
#include <memory>

#include "kit/files.h"
#include "kit/source/pagedump.h"
#include "kpg/commands.h"

void addDumpCommand(CommandLine& line) {
  auto page = std::make_shared<std::string>();
  KpgCommand command = line.command("dump", "Print a page as source that builds back to the same bytes");
  command.add("page", *page, "The page").required().type("PAGE.kpg");
  command.runs([page] { std::cout << dumpPage(*page, readFile(*page)); });
}
