#include "kpg/bobcommands.h"

int main(int argc, char** argv) {
  CLI::App app("The authoring kit.");
  app.require_subcommand(1);
  addBobCommands(app);
  CLI11_PARSE(app, argc, argv);
  return 0;
}
