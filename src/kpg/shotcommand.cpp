// kpg shot: opens a page without a window, does what a user would do, and saves what the window would show.
#include <filesystem>
#include <iostream>
#include <memory>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/pictures/png.h"
#include "kit/run/pagerun.h"
#include "kit/run/stdoutaside.h"
#include "kpg/commands.h"

namespace {

namespace fs = std::filesystem;

struct ShotOptions {
  std::string page, output, log;
  bool readOnly = false;
  std::vector<PageAction> actions;
};

std::string lastLine(std::string log) {
  while (!log.empty() && log.back() == '\n') log.pop_back();
  return log.substr(log.rfind('\n') + 1);
}

void writeLog(const std::string& path, const std::string& log) {
  if (path == "-") {
    std::cout << log << std::flush;
  } else if (!path.empty()) {
    writeFile(path, log.data(), log.size());
  }
}

// Names are relative to the folder of the call; the page changes it.
std::string againstHere(const std::string& path) {
  return path.empty() || path == "-" ? path : fs::absolute(path).string();
}

struct Shot {
  bool loaded;
  std::string log;
  PagePicture picture;
};

Shot play(const ShotOptions& options) {
  const StandardOutputAside aside;
  PageRun run(options.readOnly);
  if (!run.load(options.page)) return {false, run.log(), {}};
  for (const PageAction& action : options.actions) run.act(action);
  return {true, run.log(), run.take()};
}

void shoot(ShotOptions options) {
  if (options.output.empty()) options.output = fs::path(options.page).stem().string() + ".png";
  options.output = againstHere(options.output);
  options.log = againstHere(options.log);
  const Shot shot = play(options);
  writeLog(options.log, shot.log);
  if (!shot.loaded) throw KitError(lastLine(shot.log));
  writePng(options.output, shot.picture.width, shot.picture.height, shot.picture.pixels);
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

  const auto addAction = [&](const char* name, PageAction::Kind kind, const char* help, const char* type) {
    const auto take = [options, kind](const std::string& argument) { options->actions.push_back({kind, argument}); };
    return command.each(name, take, help).type(type).group("Actions");
  };
  addAction("--key", PageAction::key,
            "Press Up Down Left Right Select Clear Backspace UpLeft UpRight DownLeft DownRight 0..9 or S", "NAME")
      .check(checkKey);
  addAction("--wait", PageAction::wait, "Let MS milliseconds pass", "MS").between(0, 1'000'000'000);
  addAction("--eval", PageAction::eval, "Type TEXT at the console and press Enter", "TEXT");
  command.runs([options] { shoot(*options); });
}
