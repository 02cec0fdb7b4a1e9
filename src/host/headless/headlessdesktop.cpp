#include "host/headless/headlessdesktop.h"

namespace {

struct Key {
  std::string_view name;
  int virtualKey;  // comes as a key-down message; 0 for one that comes as a character
  char character;
};

constexpr Key kKeys[] = {
    {"Left", 37, 0},     {"Up", 38, 0},        {"Right", 39, 0},      {"Down", 40, 0},
    {"Clear", 46, 0},    {"Backspace", 0, 8},  {"Select", 0, 13},     {"UpLeft", 0, 'u'},
    {"UpRight", 0, 'o'}, {"DownLeft", 0, 'm'}, {"DownRight", 0, '.'}, {"S", 0, 's'},
};

std::optional<Key> findKey(std::string_view name) {
  if (name.size() == 1 && name[0] >= '0' && name[0] <= '9') return Key{name, 0, name[0]};
  for (const Key& key : kKeys)
    if (key.name == name) return key;
  return std::nullopt;
}

}  // namespace

EditControl* HeadlessDesktop::createConsole(const std::string&, int, int) { return &edit; }

std::optional<std::string> HeadlessDesktop::chooseFile(const std::string&, const std::string&, const std::string&) {
  return fileToChoose;
}

void HeadlessDesktop::settle() {
  do shell.step();
  while (shell.busy());
}

bool HeadlessDesktop::hasKey(std::string_view name) { return findKey(name).has_value(); }

bool HeadlessDesktop::key(std::string_view name) {
  const auto key = findKey(name);
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
