#include "host/win32/consolecontrol.h"

#include <string>

namespace {

// The scroll bar makes the control scroll by itself. That it hides what is typed is for controls of one line only.
constexpr DWORD kStyle = WS_CHILD | WS_VISIBLE | WS_VSCROLL | ES_MULTILINE | ES_PASSWORD | ES_NOHIDESEL;

// The desktop's fixed font, or, on a screen of small pixels, one that is so many times as large.
HFONT fixedFont(int factor) {
  const auto font = HFONT(GetStockObject(ANSI_FIXED_FONT));
  LOGFONTA look;
  if (factor == 1 || GetObjectA(font, sizeof look, &look) == 0) return font;
  look.lfHeight *= factor;
  look.lfWidth *= factor;
  return CreateFontIndirectA(&look);
}

}  // namespace

bool ConsoleControl::create(HWND parent, int width, int height) {
  edit = CreateWindowExA(0, "edit", nullptr, kStyle, 0, 0, width, height, parent, nullptr, GetModuleHandleA(nullptr),
                         nullptr);
  if (!edit) return false;
  oldEditProc = WNDPROC(SetWindowLongPtrA(edit, GWLP_WNDPROC, LONG_PTR(procedure)));
  SetWindowLongPtrA(edit, GWLP_USERDATA, LONG_PTR(this));
  return true;
}

void ConsoleControl::resize(int width, int height, int factor) {
  if (factor != fontFactor) SendMessageA(edit, WM_SETFONT, WPARAM(fixedFont(factor)), TRUE);
  fontFactor = factor;
  MoveWindow(edit, 0, 0, width, height, TRUE);
}

LRESULT CALLBACK ConsoleControl::procedure(HWND window, UINT message, WPARAM word, LPARAM data) {
  auto* const control = reinterpret_cast<ConsoleControl*>(GetWindowLongPtrA(window, GWLP_USERDATA));
  LRESULT result = 0;
  const auto pass = [&] { result = CallWindowProcA(control->oldEditProc, window, message, word, data); };
  if (message == WM_CHAR && word == '\r' && control->onEnter) {
    control->onEnter(pass);
  } else {
    pass();
  }
  return result;
}

int ConsoleControl::ask(UINT message, WPARAM word, LPARAM data) const {
  return int(SendMessageA(edit, message, word, data));
}

int ConsoleControl::textLength() const { return GetWindowTextLengthA(edit); }

std::string ConsoleControl::text() const {
  std::string bytes(size_t(textLength()) + 1, '\0');  // with the zero at its end
  bytes.resize(size_t(GetWindowTextA(edit, bytes.data(), int(bytes.size()))));
  return bytes;
}

int ConsoleControl::lineCount() const { return ask(EM_GETLINECOUNT); }

int ConsoleControl::lineIndex(int line) const { return ask(EM_LINEINDEX, WPARAM(line)); }

int ConsoleControl::lineFromChar(int position) const { return ask(EM_LINEFROMCHAR, WPARAM(position)); }

int ConsoleControl::lineLength(int position) const { return ask(EM_LINELENGTH, WPARAM(position)); }

EditSelection ConsoleControl::selection() const {
  DWORD start = 0, end = 0;
  SendMessageA(edit, EM_GETSEL, WPARAM(&start), LPARAM(&end));
  return {int(start), int(end)};
}

void ConsoleControl::select(EditSelection selection) { ask(EM_SETSEL, WPARAM(selection.start), selection.end); }

void ConsoleControl::replaceSelection(std::string_view text) {
  ask(EM_REPLACESEL, FALSE, LPARAM(std::string(text).c_str()));
}
