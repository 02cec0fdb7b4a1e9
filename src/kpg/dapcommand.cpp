// kpg dap: debugs the scripts of a page for an editor.
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <memory>
#include <string>
#include <thread>

#include "kit/control/controlclient.h"
#include "kit/dap/dapserver.h"
#include "kpg/commands.h"

namespace {

// Until there is no more, or nobody takes it.
void pass(int from, int to) {
  char bytes[65536];
  for (ssize_t n; (n = read(from, bytes, sizeof bytes)) > 0;)
    for (ssize_t done = 0; done < n;) {
      const ssize_t part = write(to, bytes + done, size_t(n - done));
      if (part < 0) return;
      done += part;
    }
}

// The studio debugs; this only passes on what it and the editor say.
void attach(const std::string& path) {
  std::signal(SIGPIPE, SIG_IGN);
  const int studio = connectLocally(path);
  std::thread([studio] {
    pass(STDIN_FILENO, studio);
    shutdown(studio, SHUT_WR);
  }).detach();
  pass(studio, STDOUT_FILENO);
}

void debug(const std::string& path) {
  if (!path.empty()) return attach(path);
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
