#include "host/shell.h"

#include <new>
#include <system_error>

#include "engine/page/pageload.h"
#include "host/host.h"
#include "host/keytable.h"

namespace {

constexpr int kConsoleWidth = 800;  // pixels
constexpr int kConsoleHeight = 600;

void post(const std::optional<RemoteKey>& key) {
  if (!key) return;
  Event event;
  event.eventClass = kKeyClass;
  event.code = key->code;
  event.data = key->data;
  eventPost(event);
}

// Does the work with the engine as the current one. What it can't get the memory for is left undone.
template <class Work>
void surviving(Engine& engine, Work work) {
  const EngineScope here(engine);
  try {
    try {
      work();
    } catch (const std::bad_alloc&) {
      hostLog("Out of memory\n");
    }
  } catch (const std::bad_alloc&) {  // not even for the message
  }
}

}  // namespace

Shell::Shell(Desktop& d) : desktop(d) {}

bool Shell::start() {
  bool started = false;
  surviving(engine, [&] {
    EditControl* edit = desktop.createConsole("KOVA Messages", kConsoleWidth, kConsoleHeight);
    if (!edit) return;
    console = std::make_unique<MessageConsole>(*edit);
    imageCacheMemory.reset(new uint8_t[kImageCacheSize]);  // not filled with zeros
    engine.start(imageCacheMemory.get(), kImageCacheSize);
    bobInitCompiler();
    started = true;
  });
  return started;
}

void Shell::step() {
  surviving(engine, [this] { engine.step(); });
}

void Shell::keyDown(int virtualKey) {
  surviving(engine, [=] { post(remoteKeyForVirtualKey(virtualKey)); });
}

void Shell::character(char c) {
  surviving(engine, [=] { post(remoteKeyForCharacter(c)); });
}

void Shell::command(Command command) {
  if (command == Command::exit) return desktop.quit();
  const auto path = desktop.chooseFile("Load File...", "KOVA Page Files", "*.kpg");
  if (path) loadPage(*path);
}

bool Shell::loadPage(const std::string& path) {
  bool loaded = false;
  surviving(engine, [&] {
    std::error_code ignored;  // a folder that isn't there leaves the present one; the load then says what it misses
    const std::filesystem::path file = path;
    const auto next = std::filesystem::absolute(folder / file.parent_path(), ignored);
    const auto isThere = [&] {
      return std::filesystem::is_directory(next, ignored) || desktop.fileMade(next / file.filename());
    };
    if (file.has_parent_path() && isThere()) folder = next;
    loaded = engine.topFrame && frameLoad(engine.topFrame, path.c_str()) != 0;
  });
  return loaded;
}

void Shell::consoleEnter(const std::function<void()>& breakLine) {
  surviving(engine, [&] {
    console->enter(breakLine, [this](std::string_view text) {
      consoleEvaluate(engine.topFrame, text.data(), uint32_t(text.size()));
    });
  });
}
