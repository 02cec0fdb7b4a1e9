// What the player takes of the machine's memory without the windows of a desktop: opens the guide, walks through it,
// and prints the resident bytes then, in kilobytes, all and those that are the process's own.
#include <cstdio>
#include <cstring>

#include "host/headless/headlessdesktop.h"

int main() {
  HeadlessDesktop desktop;
  desktop.start();
  if (!desktop.shell.loadPage(DEMO_FOLDER "/guide.kpg")) return 1;
  desktop.settle();
  for (const char* key : {"Down", "Right", "Down", "Left", "Up"}) {
    desktop.key(key);
    desktop.settle();
  }
  std::FILE* const status = std::fopen("/proc/self/status", "r");
  if (!status) return 1;
  for (char line[128]; std::fgets(line, sizeof line, status);)
    if (std::strncmp(line, "VmRSS", 5) == 0 || std::strncmp(line, "RssAnon", 7) == 0) std::fputs(line, stdout);
  std::fclose(status);
  return 0;
}
