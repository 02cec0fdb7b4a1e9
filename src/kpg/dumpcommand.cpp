// kpg dump: a page becomes a page source again.
#include <iostream>
#include <memory>

#include "kit/files.h"
#include "kit/source/pagedump.h"
#include "kit/source/pagelimits.h"
#include "kpg/commands.h"

namespace {

void dump(const std::string& page) {
  const std::vector<uint8_t> bytes = readFile(page);
  const std::string source = dumpPage(page, bytes);
  for (const KitMessage& problem : pageProblems(page, bytes)) std::cerr << problem.whole() << "\n";
  std::cout << source;
}

}  // namespace

void addDumpCommand(CommandLine& line) {
  auto page = std::make_shared<std::string>();
  KpgCommand command = line.command("dump", "Print a page as source that builds back to the same bytes");
  command.add("page", *page, "The page").required().type("PAGE.kpg");
  command.runs([page] { dump(*page); });
}
