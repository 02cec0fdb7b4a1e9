// The player as a module for JavaScript: one page at a time, in an engine of its own. browser/viewer/player.js calls
// it.
//
// Texts are UTF-8 and end with a zero byte; what is returned lasts until the next call.
#include <emscripten.h>

#include <cstdio>
#include <cstdlib>

#include "gfx/foundation/hsdebug.h"
#include "host/web/webdesktop.h"

namespace {

WebDesktop& desktop() {
  static WebDesktop& only = *new WebDesktop;  // lasts as long as the module
  return only;
}

}  // namespace

extern "C" {

// To be called once, before anything else. False when there isn't enough memory.
EMSCRIPTEN_KEEPALIVE bool playerStart() {
  // A report freezes the player on purpose. Here it ends the module, and whoever shows it can start another.
  hsSetHaltProc([] {
    std::fprintf(stderr, "%s\n", hsReportText());
    std::abort();
  });
  return desktop().start();
}

// From here on scripts open no files; the player itself still does.
EMSCRIPTEN_KEEPALIVE void playerKeepFilesFromScripts() { desktop().shell.access.scriptsOpenFiles = false; }

// Where to write the bytes of a file in memory, which is found before one that could be fetched. The name is a full
// one, such as /guide.kpg.
EMSCRIPTEN_KEEPALIVE char* playerPut(const char* path, size_t size) {
  std::string& bytes = desktop().shell.filesInMemory[std::filesystem::path(path).lexically_normal()];
  bytes.assign(size, '\0');
  return bytes.data();
}

// Loads the page into the top frame; false when it doesn't load, which the console explains.
EMSCRIPTEN_KEEPALIVE bool playerOpen(const char* path) {
  desktop().forgetFetched();
  return desktop().shell.loadPage(path);
}

EMSCRIPTEN_KEEPALIVE bool playerKey(const char* name) { return desktop().key(name); }

EMSCRIPTEN_KEEPALIVE void playerType(const char* line) { desktop().typeLine(line); }

EMSCRIPTEN_KEEPALIVE int playerRun(uint32_t now, double budget) { return desktop().run(now, budget); }

EMSCRIPTEN_KEEPALIVE const WebFrame* playerFrame() {
  static WebFrame frame;
  frame = desktop().frame();
  return &frame;
}

// The bytes as the player prints them, which are those of an old encoding.
EMSCRIPTEN_KEEPALIVE const char* playerLog() {
  static std::string log;
  log = desktop().takeLog();
  return log.c_str();
}

}  // extern "C"
