// kpg lsp: the language server of page sources and scripts.
#include <cstdio>

#include "kit/lsp/lspserver.h"
#include "kpg/commands.h"

void addLspCommand(CommandLine& line) {
  auto stdio = std::make_shared<bool>();
  KpgCommand command =
      line.command("lsp", "Help an editor with page sources and scripts, by the Language Server Protocol");
  command.flag("--stdio", *stdio, "Nothing: editors add it, and the standard input and output are always used");
  command.runs([stdio] {  // which the flag is written to
    RpcConnection connection;
    if (LspServer(connection).run(connection) != 0) throw CommandFailure(1, "");
  });
}
