#include "host/headless/headlessdesktop.h"

#include "host/keytable.h"

EditControl* HeadlessDesktop::createConsole(const std::string&, int, int) { return &edit; }

std::optional<std::string> HeadlessDesktop::chooseFile(const std::string&, const std::string&, const std::string&) {
  return fileToChoose;
}

void HeadlessDesktop::settle() {
  do shell.step();
  while (shell.busy() && breathe());
}

bool HeadlessDesktop::key(std::string_view name) {
  const auto key = keyMessageNamed(name);
  if (!key) return false;
  if (key->virtualKey) {
    shell.keyDown(key->virtualKey);
  } else {
    shell.character(key->character);
  }
  return true;
}

void HeadlessDesktop::typeLine(std::string_view text) {
  edit.select({edit.textLength(), edit.textLength()});
  edit.replaceSelection(text);
  shell.consoleEnter([this] { edit.replaceSelection("\r\n"); });
}

void HeadlessDesktop::wait(uint32_t milliseconds) {
  for (; milliseconds > 0; --milliseconds) {
    ++clock;
    shell.step();
  }
}
