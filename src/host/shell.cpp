#include "host/shell.h"

#include <filesystem>
#include <system_error>

#include "engine/core.h"
#include "engine/frame.h"
#include "engine/imagecache.h"
#include "engine/scriptbindings/scriptbindings.h"
#include "host/hostoperations.h"
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

Shell::Shell(Desktop& d) : desktop(d) { hostAttach(this); }

Shell::~Shell() {
  engineShutdown();
  hostAttach(nullptr);
}

bool Shell::start() {
  EditControl* edit = desktop.createConsole("KOVA Messages", kConsoleWidth, kConsoleHeight);
  if (!edit) return false;
  console = std::make_unique<MessageConsole>(*edit);
  imageCacheMemory = std::make_unique_for_overwrite<uint8_t[]>(kImageCacheSize);
  engineInit(imageCacheMemory.get(), kImageCacheSize);
  bobInitCompiler();
  return true;
}

void Shell::step() { engineStep(); }

void Shell::keyDown(int virtualKey) { post(remoteKeyForVirtualKey(virtualKey)); }

void Shell::character(char c) { post(remoteKeyForCharacter(c)); }

void Shell::command(Command command) {
  if (command == Command::exit) return desktop.quit();
  const auto path = desktop.chooseFile("Load File...", "KOVA Page Files", "*.kpg");
  if (path) loadPage(*path);
}

bool Shell::loadPage(const std::string& path) {
  std::error_code ignored;  // a folder that can't be entered leaves the current one; the load then says what it misses
  const auto folder = std::filesystem::path(path).parent_path();
  if (!folder.empty()) std::filesystem::current_path(folder, ignored);
  return topFrame() && frameLoad(topFrame(), path.c_str()) != 0;
}

void Shell::consoleEnter(const std::function<void()>& breakLine) {
  console->enter(breakLine,
                 [](std::string_view text) { consoleEvaluate(topFrame(), text.data(), uint32_t(text.size())); });
}
