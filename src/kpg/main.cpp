// kpg: makes pages and pictures of them.
#include <cstdlib>

#include "gfx/foundation/hsdebug.h"
#include "kpg/commands.h"

int main(int argc, char** argv) {
  hsSetHaltProc([] { std::_Exit(2); });  // a command must not hang; the report has been printed
  CommandLine line("kpg", VISTREL_VERSION, "Makes pages for the player's on-screen interface, and pictures of them.");
  addBuildCommand(line);
  addDumpCommand(line);
  addShotCommand(line);
  addClutCommand(line);
  addFontCommand(line);
  addImageCommand(line);
  addRunCommand(line);
  addEvalCommand(line);
  addCompileCommand(line);
  addDecodeCommand(line);
  addCompletionCommand(line);
  return line.run(argc, argv);
}
