#include "engine/widgets/linebreak.h"

#include "engine/text/textmeasure.h"
#include "gfx/foundation/hsascii.h"

namespace {

constexpr size_t kMostWords = 100;
constexpr size_t kMostLines = 20;

// Offsets of the first byte and of the one after the last.
struct Word {
  size_t start, end;
};

std::vector<Word> splitWords(std::string_view text) {
  std::vector<Word> words;
  for (size_t at = 0; words.size() < kMostWords;) {
    while (at < text.size() && hsAsciiIsSpace(text[at])) ++at;
    if (at == text.size()) break;
    const size_t start = at;
    while (at < text.size() && !hsAsciiIsSpace(text[at])) ++at;
    words.push_back({start, at});
  }
  return words;
}

int32_t measure(const TextStyle& style, std::string_view text) {
  int32_t width, height;
  textMeasure(style, text.data(), uint32_t(text.size()), &width, &height, nullptr);
  return width;
}

}  // namespace

std::vector<TextLine> breakLines(const TextStyle& style, std::string_view text, int32_t width) {
  const std::vector<Word> words = splitWords(text);
  std::vector<TextLine> lines;
  size_t first = 0;  // the word that the next line begins in, at `start`
  size_t start = words.empty() ? 0 : words[0].start;
  while (first < words.size() && lines.size() < kMostLines) {
    TextLine line{text.substr(start, 0), 0};
    size_t next = first;  // the first word that the line doesn't hold
    for (; next < words.size(); ++next) {
      const std::string_view piece = text.substr(start, words[next].end - start);
      const int32_t pieceWidth = measure(style, piece);
      if (pieceWidth > width) break;
      line = {piece, pieceWidth};
    }
    if (next == first) {
      const std::string_view word = text.substr(start, words[first].end - start);
      const uint32_t fitting = textFit(style, word.data(), uint32_t(word.size()), width, &line.width);
      line.text = word.substr(0, fitting);
      start += fitting;
    } else if (next < words.size()) {
      start = words[next].start;
    }
    first = next;
    lines.push_back(line);
  }
  return lines;
}
