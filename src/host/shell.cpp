#include "host/shell.h"

#include <system_error>

#include "engine/page/pageload.h"
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

}  // namespace

Shell::Shell(Desktop& d) : desktop(d) {}

bool Shell::start() {
  const EngineScope here(engine);
  EditControl* edit = desktop.createConsole("KOVA Messages", kConsoleWidth, kConsoleHeight);
  if (!edit) return false;
  console = std::make_unique<MessageConsole>(*edit);
  imageCacheMemory.reset(new uint8_t[kImageCacheSize]);  // not filled with zeros
  engine.start(imageCacheMemory.get(), kImageCacheSize);
  bobInitCompiler();
  return true;
}

void Shell::step() { engine.step(); }

void Shell::keyDown(int virtualKey) {
  const EngineScope here(engine);
  post(remoteKeyForVirtualKey(virtualKey));
}

void Shell::character(char c) {
  const EngineScope here(engine);
  post(remoteKeyForCharacter(c));
}

void Shell::command(Command command) {
  if (command == Command::exit) return desktop.quit();
  const auto path = desktop.chooseFile("Load File...", "KOVA Page Files", "*.kpg");
  if (path) loadPage(*path);
}

bool Shell::loadPage(const std::string& path) {
  const EngineScope here(engine);
  std::error_code ignored;  // a folder that isn't there leaves the present one; the load then says what it misses
  const std::filesystem::path file = path;
  const auto next = std::filesystem::absolute(folder / file.parent_path(), ignored);
  const auto isThere = [&] {
    return std::filesystem::is_directory(next, ignored) || desktop.fileMade(next / file.filename());
  };
  if (file.has_parent_path() && isThere()) folder = next;
  return engine.topFrame && frameLoad(engine.topFrame, path.c_str()) != 0;
}

void Shell::consoleEnter(const std::function<void()>& breakLine) {
  const EngineScope here(engine);
  console->enter(breakLine, [this](std::string_view text) {
    consoleEvaluate(engine.topFrame, text.data(), uint32_t(text.size()));
  });
}
