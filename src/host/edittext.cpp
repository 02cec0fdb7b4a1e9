#include "host/edittext.h"

#include <algorithm>

namespace {
constexpr std::string_view kLineBreak = "\r\n";
}

int EditText::lineCount() const { return lineFromChar(textLength()) + 1; }

int EditText::lineIndex(int line) const {
  size_t at = 0;
  for (; line > 0; --line) {
    at = bytes.find(kLineBreak, at);
    if (at == std::string::npos) return -1;
    at += kLineBreak.size();
  }
  return int(at);
}

int EditText::lineFromChar(int position) const {
  int line = 0;
  for (size_t at = bytes.find(kLineBreak); at != std::string::npos; at = bytes.find(kLineBreak, at)) {
    at += kLineBreak.size();
    if (int(at) > position) break;
    ++line;
  }
  return line;
}

int EditText::lineLength(int position) const {
  const size_t start = size_t(lineIndex(lineFromChar(position)));
  return int(std::min(bytes.find(kLineBreak, start), bytes.size()) - start);
}

void EditText::select(EditSelection selection) {
  if (selection.end < 0) selection.end = textLength();
  selected.start = std::clamp(selection.start, 0, textLength());
  selected.end = std::clamp(selection.end, 0, textLength());
  if (selected.start > selected.end) std::swap(selected.start, selected.end);
}

void EditText::replaceSelection(std::string_view text) {
  bytes.replace(size_t(selected.start), size_t(selected.end - selected.start), text);
  selected.start = selected.end = selected.start + int(text.size());
}
