// kpg: makes pages and pictures of them.
#include <cstdlib>
#include <iostream>

#include "gfx/foundation/hsdebug.h"
#include "kpg/bobcommands.h"
#include "kpg/commands.h"
#include "kpg/errors.h"

int main(int argc, char** argv) {
  hsSetHaltProc([] { std::_Exit(2); });  // a command must not hang; the report has been printed
  CLI::App app{"Makes pages for the player's on-screen interface, and pictures of them.", "kpg"};
  app.require_subcommand(1);
  addBuildCommand(app);
  addDumpCommand(app);
  addShotCommand(app);
  addClutCommand(app);
  addFontCommand(app);
  addImageCommand(app);
  addBobCommands(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e) == 0 ? 0 : 1;
  } catch (const std::exception& e) {
    std::cerr << e.what() << "\n";
    return 1;
  }
  return 0;
}
