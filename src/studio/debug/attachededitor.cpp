#include "studio/debug/attachededitor.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>

#include "kit/errors.h"

namespace {

std::shared_ptr<std::FILE> streamOf(int file, const char* mode) {
  return {fdopen(file, mode), [](std::FILE* stream) {
            if (stream) std::fclose(stream);
          }};
}

}  // namespace

struct AttachedEditor::Client {
  Client(int f, DapPage& page)
      : file(f), connection(streamOf(f, "r"), streamOf(dup(f), "w")), server(connection, page) {}
  ~Client() { shutdown(file, SHUT_RDWR); }  // which ends the thread that reads, and it closes

  const int file;
  RpcConnection connection;
  DapServer server;
};

AttachedEditor::AttachedEditor(const std::string& path, DebugDesk& d) : listener(path), desk(d) {
  desk.breakpointMoved = [this](const WantedBreakpoint& breakpoint) {
    if (breakpointMoved) breakpointMoved(breakpoint);
  };
}

AttachedEditor::~AttachedEditor() { desk.breakpointMoved = nullptr; }

void AttachedEditor::step(bool scriptRuns) {
  if (!client) {
    const int file = listener.accept();
    if (file < 0) return;
    client = std::make_unique<Client>(file, *this);
  }
  ++depth;
  client->server.serveNow(scriptRuns && !stands);
  if (--depth > 0 && client->server.ended()) return;  // it is still being served further out
  if (client->server.ended()) {
    printed = nullptr;
    breakpointMoved = nullptr;
    client.reset();
  } else if (const auto how = client->server.wanted(); stands && how && wantsToGoOn) {
    wantsToGoOn(*how);
  }
}

void AttachedEditor::stand(const BobStop& stop) {
  stands = true;
  if (client) client->server.stand(stop);
}

void AttachedEditor::goesOn() {
  stands = false;
  if (client) client->server.goesOn();
}

void AttachedEditor::showLog(const std::string& log) {
  if (log.size() < printedSoFar) printedSoFar = 0;
  if (log.size() > printedSoFar && printed) printed(log.substr(printedSoFar));
  printedSoFar = log.size();
}

void AttachedEditor::print(const std::string& line) {
  if (printed) printed(line + "\n");
}

std::vector<WantedBreakpoint> AttachedEditor::setBreakpoints(const std::string& file,
                                                             const std::vector<BobBreakpoint>& all) {
  const std::string name = debuggedFileName(file);
  desk.setBreakpoints(name, all);
  if (breakpointsChanged) breakpointsChanged();
  return desk.breakpointsOf(name);
}

// Its breakpoints stay: the studio's own debugger shows them.
void AttachedEditor::leave() {
  if (stands && wantsToGoOn) wantsToGoOn(BobResume::run);
}

void AttachedEditor::act(const PageAction& action) {
  if (wanted) wanted(action);
}

BobDebugger& AttachedEditor::debugger() {
  if (BobDebugger* standing = desk.standing()) return *standing;
  throw KitError("the page isn't stopped");
}
