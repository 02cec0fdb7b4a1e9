#include "host/win32/win32desktop.h"

#include <commdlg.h>
#include <timeapi.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <vector>

#include "gfx/foundation/hsdebug.h"
#include "host/win32/resources.h"

namespace {

constexpr std::chrono::milliseconds kBreathInterval{50};
constexpr UINT kPlainDpi = 96;
constexpr size_t kLongestPath = 32768;  // wide characters, with the zero

Win32Desktop* theDesktop = nullptr;  // for the halt function, which takes nothing

// Screen pixels to a pixel of ours, across and down.
int factorOf(HWND window) { return std::max(1, int(GetDpiForWindow(window) / kPlainDpi)); }

// Gives the window a client area of width x height of our pixels.
void fit(HWND window, int width, int height) {
  const int factor = factorOf(window);
  RECT rect{0, 0, width * factor, height * factor};
  const auto style = DWORD(GetWindowLongA(window, GWL_STYLE));
  AdjustWindowRectExForDpi(&rect, style, GetMenu(window) != nullptr, 0, GetDpiForWindow(window));
  SetWindowPos(window, nullptr, 0, 0, rect.right - rect.left, rect.bottom - rect.top,
               SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

HMENU fileMenu() {
  const HMENU bar = CreateMenu(), popup = CreatePopupMenu();
  for (const MenuItem& item : kFileMenu)
    AppendMenuA(popup, item.text ? MF_STRING : MF_SEPARATOR, UINT_PTR(item.command), item.text);
  AppendMenuA(bar, MF_POPUP, UINT_PTR(popup), kFileMenuTitle);
  return bar;
}

std::wstring wide(const std::string& utf8) { return std::filesystem::path(utf8).wstring(); }

}  // namespace

Win32Desktop::Win32Desktop(HINSTANCE i) : instance(i) {
  theDesktop = this;
  hsSetHaltProc([] { theDesktop->halt(); });
  timeBeginPeriod(1);  // sleeps end to the millisecond
}

bool Win32Desktop::start() { return shell.start(); }

void Win32Desktop::run() {
  for (;;) {
    MSG message;
    if (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
      if (message.message == WM_QUIT) std::exit(0);
      TranslateMessage(&message);
      DispatchMessageA(&message);
    } else {
      waitForWork();
    }
    lastStep = Clock::now();
    shell.step();
  }
}

// Until there is a message, or the engine has something to do.
void Win32Desktop::waitForWork() {
  if (shell.busy()) return;
  DWORD limit = INFINITE;
  if (const auto due = shell.nextTimer()) {
    const uint32_t now = milliseconds();
    limit = *due <= now ? 0 : std::min<DWORD>(*due - now, INFINITE - 1);
  }
  MsgWaitForMultipleObjectsEx(0, nullptr, limit, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
}

// ---- windows

HWND Win32Desktop::createWindow(const std::string& className, const std::string& title, WNDPROC procedure, HMENU menu,
                                int width, int height) {
  WNDCLASSEXA look{};
  look.cbSize = sizeof look;
  look.style = CS_HREDRAW | CS_VREDRAW;
  look.lpfnWndProc = procedure;
  look.hInstance = instance;
  look.hIcon = LoadIconA(instance, MAKEINTRESOURCEA(kApplicationIcon));
  look.hCursor = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));  // the arrow
  look.hbrBackground = HBRUSH(GetStockObject(WHITE_BRUSH));
  look.lpszClassName = className.c_str();
  RegisterClassExA(&look);
  const HWND window = CreateWindowExA(0, className.c_str(), title.c_str(), WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                                      CW_USEDEFAULT, width, height, nullptr, menu, instance, nullptr);
  if (!window) return nullptr;
  SetWindowLongPtrA(window, GWLP_USERDATA, LONG_PTR(this));
  fit(window, width, height);
  return window;
}

EditControl* Win32Desktop::createConsole(const std::string& title, int width, int height) {
  consoleWidth = width;
  consoleHeight = height;
  consoleWindow = createWindow("KOVA Messages", title, consoleProcedure, nullptr, width, height);
  if (!consoleWindow || !edit.create(consoleWindow, width, height)) return nullptr;
  edit.onEnter = [this](const std::function<void()>& breakLine) {
    if (stopped) return breakLine();
    shell.consoleEnter(breakLine);
  };
  ShowWindow(consoleWindow, SW_SHOW);
  return &edit;
}

void Win32Desktop::createScreen(const std::string& title, int width, int height) {
  screenWindow = createWindow("KOVA Screen", title, screenProcedure, fileMenu(), width, height);
  ShowWindow(screenWindow, SW_SHOW);
}

LRESULT CALLBACK Win32Desktop::consoleProcedure(HWND window, UINT message, WPARAM word, LPARAM data) {
  auto* const desktop = reinterpret_cast<Win32Desktop*>(GetWindowLongPtrA(window, GWLP_USERDATA));
  switch (message) {
    case WM_DESTROY: PostQuitMessage(0); break;
    case WM_SIZE:
      if (desktop && desktop->edit.window()) desktop->edit.resize(LOWORD(data), HIWORD(data), factorOf(window));
      break;
    case WM_SETFOCUS:
      if (desktop) SetFocus(desktop->edit.window());
      return 0;
    case WM_DPICHANGED: fit(window, desktop->consoleWidth, desktop->consoleHeight); return 0;
    default: break;
  }
  return DefWindowProcA(window, message, word, data);
}

// The default follows whatever was done.
LRESULT CALLBACK Win32Desktop::screenProcedure(HWND window, UINT message, WPARAM word, LPARAM data) {
  auto* const desktop = reinterpret_cast<Win32Desktop*>(GetWindowLongPtrA(window, GWLP_USERDATA));
  if (desktop) desktop->onScreenMessage(message, word);
  return DefWindowProcA(window, message, word, data);
}

void Win32Desktop::onScreenMessage(UINT message, WPARAM word) {
  switch (message) {
    case WM_PAINT: return paint();
    case WM_DPICHANGED: return fit(screenWindow, shell.screen.screenWidth, shell.screen.screenHeight);
    case WM_DESTROY: return PostQuitMessage(0);
    case WM_KEYDOWN:
      if (!stopped) shell.keyDown(int(word));
      return;
    case WM_CHAR:
      if (!stopped) shell.character(char(word));
      return;
    case WM_COMMAND: {
      const auto command = Command(LOWORD(word));
      const bool isOurs = std::any_of(std::begin(kFileMenu), std::end(kFileMenu),
                                      [&](const MenuItem& item) { return item.text && item.command == command; });
      if (isOurs && (!stopped || command == Command::exit)) shell.command(command);
      return;
    }
    default: return;
  }
}

// ---- pixels

void Win32Desktop::invalidate(const DesktopRect& rect) {
  const int factor = factorOf(screenWindow);
  const RECT old{rect.x * factor, rect.y * factor, (rect.x + rect.w) * factor, (rect.y + rect.h) * factor};
  InvalidateRect(screenWindow, &old, FALSE);
}

void Win32Desktop::paint() {
  PAINTSTRUCT painting;
  const HDC context = BeginPaint(screenWindow, &painting);
  if (!context) return;
  const ScreenSurface& screen = shell.screen;
  const int factor = factorOf(screenWindow), width = screen.screenWidth, height = screen.screenHeight;
  BITMAPINFO dib{};
  dib.bmiHeader.biSize = sizeof dib.bmiHeader;
  dib.bmiHeader.biWidth = width;
  dib.bmiHeader.biHeight = -height;  // rows from the top
  dib.bmiHeader.biPlanes = 1;
  dib.bmiHeader.biBitCount = 32;

  // What is to be painted, in our pixels; whatever a larger window shows beside them is its background.
  const RECT& part = painting.rcPaint;
  const int x = part.left / factor, y = part.top / factor;
  const int w = std::min<int>((part.right + factor - 1) / factor, width) - x;
  const int h = std::min<int>((part.bottom + factor - 1) / factor, height) - y;
  if (w > 0 && h > 0) {
    if (factor == 1) {
      SetDIBitsToDevice(context, x, y, DWORD(w), DWORD(h), x, height - y - h, 0, UINT(height), screen.dibBits.data(),
                        &dib, DIB_RGB_COLORS);
    } else {
      SetStretchBltMode(context, COLORONCOLOR);
      StretchDIBits(context, 0, 0, width * factor, height * factor, 0, 0, width, height, screen.dibBits.data(), &dib,
                    DIB_RGB_COLORS, SRCCOPY);
    }
  }
  EndPaint(screenWindow, &painting);
}

// ---- what else the shell asks

std::optional<std::string> Win32Desktop::chooseFile(const std::string& title, const std::string& filterName,
                                                    const std::string& pattern) {
  const std::wstring caption = wide(title), folder = shell.folder.wstring();
  // Name and pattern, each with a zero, and one more at the end.
  const std::wstring filter = wide(filterName) + L'\0' + wide(pattern) + L'\0';
  std::vector<wchar_t> chosen(kLongestPath);
  OPENFILENAMEW dialog{};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = screenWindow;
  dialog.lpstrFilter = filter.c_str();
  dialog.lpstrFile = chosen.data();
  dialog.nMaxFile = DWORD(chosen.size());
  dialog.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
  dialog.lpstrTitle = caption.c_str();
  stopped = true;
  const bool isChosen = GetOpenFileNameW(&dialog);
  stopped = false;
  if (!isChosen) return std::nullopt;
  return std::filesystem::path(chosen.data()).string();
}

uint32_t Win32Desktop::milliseconds() {
  return uint32_t(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - started).count());
}

bool Win32Desktop::breathe() {
  if (stopped || Clock::now() - lastStep < kBreathInterval) return true;
  stopped = true;
  for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
    if (message.message == WM_QUIT) std::_Exit(0);
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
  stopped = false;
  lastStep = Clock::now();
  return true;
}

void Win32Desktop::quit() { PostQuitMessage(0); }

void Win32Desktop::halt() {
  stopped = true;
  if (*hsReportText() != '\0') shell.console->write(std::string(hsReportText()) + "\n");
  MSG message;
  while (GetMessageA(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
  std::_Exit(0);
}
