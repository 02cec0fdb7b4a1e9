#include "host/console.h"

namespace {
constexpr int kTrimTrigger = 20000;  // a last line that starts beyond this position is trimmed for
constexpr int kTrimKeep = 2000;      // the line that holds this position becomes the first
}  // namespace

void MessageConsole::consolePutChar(char c) {
  if (c == '\n') consolePutChar('\r');
  if (pending == buffer.size()) flush();
  buffer[pending++] = c;
  if (c == '\n') flush();
}

void MessageConsole::write(std::string_view text) {
  for (char c : text) consolePutChar(c);
}

void MessageConsole::flush() {
  if (pending == 0) return;
  trim();
  const std::string_view text(buffer.data(), pending);
  edit.replaceSelection(text.substr(0, text.find('\0')));  // the control takes a text up to its zero byte
  pending = 0;
}

void MessageConsole::trim() {
  if (edit.textLength() <= kTrimTrigger) return;  // which is faster to tell than where the last line starts
  if (edit.lineIndex(edit.lineCount() - 1) <= kTrimTrigger) return;
  const int cut = edit.lineIndex(edit.lineFromChar(kTrimKeep));
  EditSelection kept = edit.selection();
  edit.select({0, cut});
  edit.replaceSelection({});
  kept.start -= cut;
  kept.end -= cut;
  // A selection that began in the part that went selects everything, so the next output replaces it all.
  if (kept.start < 0) kept = {0, -1};
  edit.select(kept);
}

void MessageConsole::enter(const std::function<void()>& breakLine,
                           const std::function<void(std::string_view)>& evaluate) {
  EditSelection range = edit.selection();
  if (range.start != range.end) {
    edit.select({range.end, range.end});
  } else {
    const int caret = range.end;
    range.start = edit.lineIndex(edit.lineFromChar(caret));
    range.end = range.start + edit.lineLength(caret);
    if (range.end > caret) edit.select({range.end, range.end});
  }
  breakLine();
  if (range.end <= range.start) return;
  const std::string text = edit.text();
  evaluate(std::string_view(text).substr(size_t(range.start), size_t(range.end - range.start)));
}
