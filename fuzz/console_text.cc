// The console's text while somebody types, selects and presses Enter in the middle of output: positions stay inside the
// text, lines end where the text says, and typed lines are handed on whole.
#include <cstdlib>
#include <string>

#include "choices.h"
#include "host/console.h"
#include "host/edittext.h"

namespace {

void check(bool holds) {
  if (!holds) std::abort();
}

// What the control answers about its lines, held against the text itself. Of long texts a part: each answer reads them.
void checkLines(const EditText& edit) {
  const std::string text = edit.text();
  check(edit.textLength() == int(text.size()));
  int line = 0;
  size_t begin = 0, due = 0;  // the text's next place to look at
  for (;; ++line) {
    const size_t end = text.find("\r\n", begin);
    const size_t length = (end == text.npos ? text.size() : end) - begin;
    if (begin >= due) {
      check(edit.lineIndex(line) == int(begin));
      check(edit.lineLength(int(begin)) == int(length));
      check(edit.lineFromChar(int(begin)) == line && edit.lineFromChar(int(begin + length)) == line);
      due = begin + text.size() / 16;
    }
    if (end == text.npos) break;
    begin = end + 2;
  }
  check(edit.lineCount() == line + 1);
  const EditSelection selected = edit.selection();
  check(0 <= selected.start && selected.start <= selected.end && selected.end <= edit.textLength());
}

std::string textOf(Choices& choices) {
  constexpr const char* kPieces[] = {"a", "\r", "\n", "\r\n", " ", "x = 1;", "\xE9", ""};
  std::string text;
  for (uint32_t i = choices.below(12); i > 0; --i) text += choices.pick(kPieces);
  if (choices.oneIn(8)) text.append(choices.below(3000), 'w');
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Choices choices(data, size);
  EditText edit;
  MessageConsole console(edit);
  for (int i = 0; !choices.isEmpty() && i < 100; ++i) {
    switch (choices.below(5)) {
      case 0: console.write(textOf(choices)); break;
      case 1: edit.replaceSelection(textOf(choices)); break;
      case 2: edit.select({int32_t(choices.word()) % 32768, int32_t(choices.word()) % 32768}); break;
      case 3: console.flush(); break;
      default: {
        const std::string before = edit.text();
        console.enter([&] { edit.replaceSelection("\r\n"); },
                      [&](std::string_view line) { check(!line.empty() && before.find(line) != before.npos); });
      }
    }
    checkLines(edit);
  }
  return 0;
}
