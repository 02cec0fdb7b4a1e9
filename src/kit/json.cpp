#include "kit/json.h"

#include <cstdio>

namespace {

// How many bytes from the start make one code point of UTF-8; 0 if they make none. The player's own decoder takes what
// no reader of JSON would.
size_t utf8Length(std::string_view text) {
  const auto byte = [&](size_t i) { return i < text.size() ? uint8_t(text[i]) : 0; };
  const auto follows = [&](size_t i) { return (byte(i) & 0xC0) == 0x80; };
  const uint8_t first = byte(0), second = byte(1);
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return follows(1) ? 2 : 0;
  if (first >= 0xE0 && first <= 0xEF) {
    const bool isShort = first == 0xE0 && second < 0xA0, isSurrogate = first == 0xED && second >= 0xA0;
    return follows(1) && follows(2) && !isShort && !isSurrogate ? 3 : 0;
  }
  if (first >= 0xF0 && first <= 0xF4) {
    const bool isShort = first == 0xF0 && second < 0x90, isBeyond = first == 0xF4 && second >= 0x90;
    return follows(1) && follows(2) && follows(3) && !isShort && !isBeyond ? 4 : 0;
  }
  return 0;
}

}  // namespace

void JsonWriter::string(std::string_view key, std::string_view text) {
  item(key);
  quoted(text);
}

void JsonWriter::number(std::string_view key, int64_t n) {
  item(key);
  out += std::to_string(n);
}

void JsonWriter::boolean(std::string_view key, bool is) {
  item(key);
  out += is ? "true" : "false";
}

void JsonWriter::newLine() {
  if (form == JsonForm::indented) out += "\n" + std::string(2 * depth, ' ');
}

void JsonWriter::begin(std::string_view key, char bracket) {
  item(key);
  out += bracket;
  ++depth;
  isFirst = true;
}

void JsonWriter::end(char bracket) {
  --depth;
  if (!isFirst) newLine();
  out += bracket;
  isFirst = false;
  if (depth == 0) newLine();
}

// What comes before a value.
void JsonWriter::item(std::string_view key) {
  if (!isFirst) out += ',';
  if (depth > 0) newLine();
  isFirst = false;
  if (key.empty()) return;
  quoted(key);
  out += form == JsonForm::oneLine ? ":" : ": ";
}

void JsonWriter::quoted(std::string_view text) {
  out += '"';
  for (size_t length; !text.empty(); text.remove_prefix(length)) {
    length = utf8Length(text);
    const uint8_t first = uint8_t(text[0]);
    if (length == 0) {
      out += "\\ufffd";
      length = 1;
    } else if (first == '"' || first == '\\') {
      out += {'\\', char(first)};
    } else if (first < ' ') {
      char code[8];
      std::snprintf(code, sizeof code, "\\u%04x", unsigned(first));
      out += code;
    } else {
      out += text.substr(0, length);
    }
  }
  out += '"';
}
