// vistrel-studio: the author's window.
#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>
#include <cstdio>

#include "kit/version.h"
#include "studio/window/look.h"
#include "studio/window/studiowindow.h"

int main(int argc, char** argv) {
  QApplication application(argc, argv);
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
  words.addOptions({control, dark, light});
  words.process(application);
  if (words.positionalArguments().size() != 1) {
    std::fputs("vistrel-studio: name one page to open, vistrel-studio PAGE.yaml\n", stderr);
    return 1;
  }
  applyLook(application, words.isSet(dark) || (desktopIsDark() && !words.isSet(light)));
  StudioWindow window(words.positionalArguments().front().toStdString());
  if (words.isSet(control)) try {
      window.listenAt(words.value(control).toStdString());
    } catch (const KitError& e) {
      std::fprintf(stderr, "%s\n", e.what());
      return 1;
    }
  window.resize(1400, 860);
  window.show();
  QTimer::singleShot(0, &window, [&] { window.pageDriver().restart(); });
  return QApplication::exec();
}
