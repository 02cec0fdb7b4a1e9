// kpg dap: debugs the scripts of a page for an editor.
#include <memory>
#include <string>

#include "kit/control/controlclient.h"
#include "kit/dap/dapserver.h"
#include "kpg/commands.h"

namespace {

void debug(const std::string& path) {
  if (!path.empty()) return joinLocally(path);  // the studio debugs
  RpcConnection connection;
  DapServer(connection).run();
}

}  // namespace

void addDapCommand(CommandLine& line) {
  auto path = std::make_shared<std::string>();
  KpgCommand command = line.command("dap", "Debug a page for an editor, by the Debug Adapter Protocol");
  command.add("--attach", *path, "The socket of a studio that was started with --dap, whose page is to be debugged")
      .type("PATH");
  command.runs([path] { debug(*path); });
}
