// vistrel: the previewer on Windows. It takes no arguments.
#include "host/win32/win32desktop.h"

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  static Win32Desktop desktop(instance);
  if (!desktop.start()) return -1;
  desktop.run();
  return 0;
}
