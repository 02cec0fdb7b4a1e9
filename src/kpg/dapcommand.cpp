// kpg dap: debugs the scripts of a page for an editor.
#include <memory>
#include <string>

#include "kit/control/controlclient.h"
#include "kit/dap/dapserver.h"
#include "kpg/commands.h"
#include "kpg/pageactions.h"

namespace {

struct DapOptions : RunLimits {
  std::string path;
};

void debug(const DapOptions& options) {
  if (!options.path.empty()) return joinLocally(options.path);  // the studio debugs
  RpcConnection connection;
  DapServer(connection, options).run();
}

}  // namespace

void addDapCommand(CommandLine& line) {
  auto options = std::make_shared<DapOptions>();
  KpgCommand command = line.command("dap", "Debug a page for an editor, by the Debug Adapter Protocol");
  command
      .add("--attach", options->path,
           "The socket of a studio that was started with --dap, whose page is to be debugged")
      .type("PATH");
  addReadOnly(command, *options);
  addSpaceLimits(command, *options);  // not of time: whoever debugs stops a script that doesn't end
  command.runs([options] { debug(*options); });
}
