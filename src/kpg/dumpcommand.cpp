// kpg dump: a page becomes a page source again.
#include <iostream>
#include <memory>

#include "kpg/commands.h"
#include "kpg/dump.h"
#include "kpg/files.h"

void addDumpCommand(CLI::App& app) {
  auto page = std::make_shared<std::string>();
  CLI::App* command = app.add_subcommand("dump", "Print a page as source that builds back to the same bytes");
  command->add_option("page", *page, "The page")->required()->type_name("PAGE.kpg");
  command->callback([page] { std::cout << dumpPage(*page, readFile(*page)); });
}
