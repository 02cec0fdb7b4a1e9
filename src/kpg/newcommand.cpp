// kpg new: a project to begin with.
#include <iostream>
#include <memory>

#include "kit/project/newproject.h"
#include "kpg/commands.h"

void addNewCommand(CommandLine& line) {
  auto folder = std::make_shared<std::string>();
  KpgCommand command =
      line.command("new", "Begin a project: a page, a picture, a font and a script that build at once");
  command.add("name", *folder, "The folder to make").required().type("NAME");
  command.runs([folder] {
    for (const std::string& file : newProject(*folder)) std::cout << file << "\n";
    std::cout << "\nNow build it, and look at it in a picture or in the previewer:\n\n"
              << "  cd " << *folder << "\n  kpg build\n  kpg shot build/main.kpg --key Right --key Select -o main.png\n"
              << "  vistrel build/main.kpg\n";
  });
}
