// Prints what the previewer's windows are, as another program sees them, and the text of the console at the end.
#include <windows.h>

#include <cstdio>
#include <string>

namespace {

void print(const char* name, HWND window) {
  char className[64] = "";
  RECT outer{}, client{};
  GetClassNameA(window, className, sizeof className);
  GetWindowRect(window, &outer);
  GetClientRect(window, &client);
  std::printf("%s class \"%s\" style %lx outer %ldx%ld client %ldx%ld\n", name, className,
              static_cast<unsigned long>(GetWindowLongA(window, GWL_STYLE)), outer.right - outer.left,
              outer.bottom - outer.top, client.right, client.bottom);
}

}  // namespace

int main() {
  const HWND console = FindWindowA("KOVA Messages", "KOVA Messages"),
             screen = FindWindowA("KOVA Screen", "KOVA Screen");
  if (!console || !screen) return 1;
  const HWND edit = FindWindowExA(console, nullptr, "edit", nullptr);
  print("console", console);
  print("screen", screen);
  print("edit", edit);
  std::string text(size_t(SendMessageA(edit, WM_GETTEXTLENGTH, 0, 0)) + 1, '\0');
  text.resize(size_t(SendMessageA(edit, WM_GETTEXT, text.size(), LPARAM(text.data()))));
  std::printf("text\n%s", text.c_str());
  return 0;
}
