// kpg tree: what a page consists of, and where it lies on the screen.
#include <iostream>
#include <memory>

#include "kit/files.h"
#include "kit/source/pagebuild.h"
#include "kit/source/pagelimits.h"
#include "kit/source/pageoutline.h"
#include "kpg/commands.h"

namespace {

PageOutline outline(const std::string& page) {
  if (isPageSource(page)) {
    BuiltPage built = compilePage(page);
    return outlinePage(page, std::move(built.bytes), built.places);
  }
  std::vector<uint8_t> bytes = readFile(page);
  for (const KitMessage& problem : pageProblems(page, bytes)) std::cerr << problem.whole() << "\n";
  return outlinePage(page, std::move(bytes));
}

}  // namespace

void addTreeCommand(CommandLine& line) {
  struct Options {
    std::string page;
    bool json = false;
  };
  auto options = std::make_shared<Options>();
  KpgCommand command = line.command(
      "tree", "Print the widgets of a page or a page source: where they lie on the screen, links, styles and files");
  command.add("page", options->page, "The page, or its source").required().type("PAGE.kpg|PAGE.yaml");
  command.flag("--json", options->json, "Print JSON, for tools");
  command.runs([options] {
    const PageOutline page = outline(options->page);
    std::cout << (options->json ? outlineJson(page) : outlineText(page));
  });
}
