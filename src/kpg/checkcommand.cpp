// kpg check: the traps of the player in page sources.
#include <iostream>
#include <memory>

#include "kit/check/checkpage.h"
#include "kit/source/pagebuild.h"
#include "kpg/commands.h"
#include "kpg/pagechecks.h"
#include "kpg/projectbuild.h"

void addCheckCommand(CommandLine& line) {
  struct Options {
    std::vector<std::string> pages;
    bool json = false;
  };
  auto options = std::make_shared<Options>();
  KpgCommand command = line.command("check", "Find what the player will do otherwise than a page source seems to say");
  command.add("page", options->pages, "The sources; by default all pages of the project around").type("PAGE.yaml");
  command.flag("--json", options->json, "Print JSON, for tools");
  command.runs([options] {
    report(options->pages.empty() ? checkProject(openProject("", "")) : checkPages(options->pages), std::cout,
           options->json);
  });
}
