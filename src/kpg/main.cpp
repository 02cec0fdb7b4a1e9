// kpg: makes pages and pictures of them.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "gfx/foundation/hsdebug.h"
#include "kit/version.h"
#include "kpg/commands.h"

namespace {

// A file must not get the number of a stream that the caller has closed. Writing there fails, as it should.
void openStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (fcntl(stream, F_GETFD) < 0) open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

// The exit status: what was printed has not got there before it has been flushed.
int finishStandardOutput(int status) {
  errno = 0;
  const bool flushed = std::fflush(stdout) == 0;
  if (flushed && !std::ferror(stdout)) return status;
  std::fprintf(stderr, "standard output: can't be written%s%s\n", errno ? ": " : "", errno ? std::strerror(errno) : "");
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  openStandardStreams();
  std::signal(SIGPIPE, SIG_IGN);  // what is to be saved is saved, whether or not somebody reads what is printed
  // A command must not hang. The report has been printed, but perhaps aside.
  hsSetHaltProc([] {
    if (*hsReportText()) std::fprintf(stderr, "%s\n", hsReportText());
    std::_Exit(2);
  });
  CommandLine line("kpg", kitVersion(), "Makes pages for the player's on-screen interface, and pictures of them.");
  addNewCommand(line);
  addBuildCommand(line);
  addCleanCommand(line);
  addPackCommand(line);
  addDumpCommand(line);
  addTreeCommand(line);
  addShotCommand(line);
  addRemoteCommand(line);
  addClutCommand(line);
  addColorCommand(line);
  addFontCommand(line);
  addImageCommand(line);
  addRunCommand(line);
  addEvalCommand(line);
  addCompileCommand(line);
  addDecodeCommand(line);
  addCompletionCommand(line);
  return finishStandardOutput(line.run(argc, argv));
}
