// vistrel-studio: the author's window.
#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <memory>
#include <string_view>

#include "kit/version.h"
#include "studio/window/look.h"
#include "studio/window/studiowindow.h"

namespace {

// Such questions are answered without a desktop.
bool asksOnly(int argc, char** argv) {
  return std::any_of(argv + 1, argv + argc, [](std::string_view word) {
    return word == "--help" || word == "-h" || word == "--help-all" || word == "--version" || word == "-v";
  });
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);  // an editor may go in the middle of a message
  const std::unique_ptr<QCoreApplication> application(asksOnly(argc, argv) ? new QCoreApplication(argc, argv)
                                                                           : new QApplication(argc, argv));
  QApplication::setApplicationName("vistrel-studio");
  QApplication::setApplicationVersion(kitVersion());
  QCommandLineParser words;
  words.setApplicationDescription("Shows a page while its author works on it: each save is on the screen at once.");
  words.addHelpOption();
  words.addVersionOption();
  words.addPositionalArgument("PAGE", "A page source (.yaml) or a page (.kpg)");
  const QCommandLineOption dark("dark", "Light on dark, whatever the desktop does"),
      light("light", "Dark on light, whatever the desktop does");
  const QCommandLineOption control("control", "Let kpg remote drive the page through a socket that is made here",
                                   "PATH");
  const QCommandLineOption debug("dap", "Let kpg dap --attach debug the page through a socket that is made here",
                                 "PATH");
  const QCommandLineOption files("files", kFileReachHelp, "page|all|none", "page");
  words.addOptions({control, debug, dark, files, light});
  words.process(*application);
  if (words.positionalArguments().size() != 1) {
    std::fputs("vistrel-studio: name one page to open, vistrel-studio PAGE.yaml\n", stderr);
    return 1;
  }
  const std::optional<FileReach> reach = fileReachNamed(words.value(files).toStdString());
  if (!reach) {
    std::fputs("vistrel-studio: --files: page, all or none\n", stderr);
    return 1;
  }
  applyLook(*qApp, words.isSet(dark) || (desktopIsDark() && !words.isSet(light)));
  StudioWindow window(words.positionalArguments().front().toStdString(), *reach);
  try {
    if (words.isSet(control)) window.listenAt(words.value(control).toStdString());
    if (words.isSet(debug)) window.debugAt(words.value(debug).toStdString());
  } catch (const KitError& e) {
    std::fprintf(stderr, "%s\n", e.what());
    return 1;
  }
  window.resize(1400, 860);
  window.show();
  QTimer::singleShot(0, &window, [&] { window.pageDriver().restart(); });
  return QApplication::exec();
}
