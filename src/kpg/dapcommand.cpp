// kpg dap: debugs the scripts of a page for an editor.
#include <cstdio>

#include "kit/dap/dapserver.h"
#include "kpg/commands.h"

namespace {

void debug() {
  RpcConnection connection(stdin, stdout);
  DapServer(connection).run();
}

}  // namespace

void addDapCommand(CommandLine& line) {
  KpgCommand command = line.command("dap", "Debug a page for an editor, by the Debug Adapter Protocol");
  command.runs(debug);
}
