// kpg shot: opens a page without a window, does what a user would do, and saves what the window would show.
#include <filesystem>
#include <iostream>
#include <memory>

#include "host/headless/headlessdesktop.h"
#include "kpg/commands.h"
#include "kpg/errors.h"
#include "kpg/files.h"
#include "kpg/png.h"
#include "kpg/stdoutaside.h"

namespace {

namespace fs = std::filesystem;

struct Action {
  enum Kind { key, wait, eval } kind;
  std::string argument;
};

struct ShotOptions {
  std::string page, output, log;
  bool readOnly = false;
  std::vector<Action> actions;
};

void perform(HeadlessDesktop& desktop, const Action& action) {
  switch (action.kind) {
    case Action::key: desktop.key(action.argument); return desktop.settle();
    case Action::wait: return desktop.wait(uint32_t(std::stoul(action.argument)));
    case Action::eval: desktop.typeLine(action.argument); return desktop.settle();
  }
}

std::string lastLine(std::string log) {
  while (!log.empty() && log.back() == '\n') log.pop_back();
  return log.substr(log.rfind('\n') + 1);
}

// True when the page loaded.
bool play(HeadlessDesktop& desktop, const ShotOptions& options) {
  desktop.start();
  desktop.settle();
  if (!desktop.shell.loadPage(fs::absolute(options.page).string())) return false;
  desktop.settle();
  for (const Action& action : options.actions) perform(desktop, action);
  return true;
}

void writeLog(const std::string& path, const std::string& log) {
  if (path == "-") {
    std::cout << log << std::flush;
  } else if (!path.empty()) {
    writeFile(path, log.data(), log.size());
  }
}

// Names are taken against the folder of the call; the page changes it.
std::string againstHere(const std::string& path) {
  return path.empty() || path == "-" ? path : fs::absolute(path).string();
}

void shoot(ShotOptions options) {
  if (options.output.empty()) options.output = fs::path(options.page).stem().string() + ".png";
  options.output = againstHere(options.output);
  options.log = againstHere(options.log);

  bool loaded;
  std::string log;
  int width, height;
  std::vector<uint32_t> window;
  {
    const StandardOutputAside aside;
    HeadlessDesktop desktop;
    desktop.shell.engine.scriptsMayWriteFiles = !options.readOnly;
    loaded = play(desktop, options);
    log = desktop.log;
    width = desktop.shell.screen.screenWidth;
    height = desktop.shell.screen.screenHeight;
    window = desktop.shell.screen.take();
  }
  writeLog(options.log, log);
  if (!loaded) throw CommandError(lastLine(log));
  writePng(options.output, width, height, window);
}

std::string checkKey(const std::string& name) {
  return HeadlessDesktop::hasKey(name) ? "" : "there is no key '" + name + "'";
}

}  // namespace

void addShotCommand(CommandLine& line) {
  auto options = std::make_shared<ShotOptions>();
  KpgCommand command = line.command("shot", "Open a page, do the actions in order, save the screen");
  command.add("page", options->page, "The page").required().type("PAGE.kpg");
  command.add("-o", options->output, "The picture to write; by default the page's name with .png, here")
      .type("OUT.png");
  command.add("--log", options->log, "Where to write what the console showed; - for the standard output").type("FILE");

  command.flag("--read-only", options->readOnly, "Let no script write a file");

  const auto addAction = [&](const char* name, Action::Kind kind, const char* help, const char* type) {
    const auto take = [options, kind](const std::string& argument) { options->actions.push_back({kind, argument}); };
    return command.each(name, take, help).type(type).group("Actions");
  };
  addAction("--key", Action::key,
            "Press Up Down Left Right Select Clear Backspace UpLeft UpRight DownLeft DownRight 0..9 or S", "NAME")
      .check(checkKey);
  addAction("--wait", Action::wait, "Let MS milliseconds pass", "MS").between(0, 1'000'000'000);
  addAction("--eval", Action::eval, "Type TEXT at the console and press Enter", "TEXT");
  command.runs([options] { shoot(*options); });
}
