#include "kit/readjson.h"

#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "kit/errors.h"
#include "kit/utf8.h"

namespace {

void appendUtf8(uint32_t code, std::string* out) {
  if (code < 0x80) {
    *out += char(code);
  } else if (code < 0x800) {
    *out += {char(0xC0 | code >> 6), char(0x80 | (code & 0x3F))};
  } else if (code < 0x10000) {
    *out += {char(0xE0 | code >> 12), char(0x80 | (code >> 6 & 0x3F)), char(0x80 | (code & 0x3F))};
  } else {
    *out += {char(0xF0 | code >> 18), char(0x80 | (code >> 12 & 0x3F)), char(0x80 | (code >> 6 & 0x3F)),
             char(0x80 | (code & 0x3F))};
  }
}

class JsonReader {
 public:
  explicit JsonReader(std::string_view t) : text(t) {}

  JsonValue read() {
    if (const size_t bad = firstBadUtf8(text); bad != text.npos) {
      at = bad;
      fail("UTF-8");
    }
    JsonValue found = value(0);
    skipSpace();
    if (at < text.size()) fail("the end");
    return found;
  }

 private:
  [[noreturn]] void fail(const std::string& expected) const {
    throw KitError("no JSON: expecting " + expected + " at byte " + std::to_string(at + 1));
  }

  char peek() const { return at < text.size() ? text[at] : '\0'; }

  bool take(std::string_view word) {
    if (!text.substr(at).starts_with(word)) return false;
    at += word.size();
    return true;
  }

  void skipSpace() { at = std::min(text.find_first_not_of(" \t\r\n", at), text.size()); }

  JsonValue value(int depth) {
    skipSpace();
    JsonValue v;
    if (take("null")) return v;
    if (peek() == 't' || peek() == 'f') {
      v.kind = JsonValue::Kind::boolean;
      v.isTrue = peek() == 't';
      if (!take("true") && !take("false")) fail("a value");
    } else if (peek() == '"') {
      v.kind = JsonValue::Kind::text;
      v.text = string();
    } else if (peek() == '[' || peek() == '{') {
      if (depth == kMostJsonDepth) fail("no deeper nesting");
      peek() == '[' ? array(depth, &v) : object(depth, &v);
    } else {
      v.kind = JsonValue::Kind::number;
      v.number = number();
    }
    return v;
  }

  void array(int depth, JsonValue* v) {
    v->kind = JsonValue::Kind::array;
    ++at;
    skipSpace();
    if (take("]")) return;
    do v->array.push_back(value(depth + 1));
    while (goesOn("]"));
  }

  void object(int depth, JsonValue* v) {
    v->kind = JsonValue::Kind::object;
    ++at;
    skipSpace();
    if (take("}")) return;
    do {
      skipSpace();
      std::string key = string();
      skipSpace();
      if (!take(":")) fail("a colon");
      v->object.push_back({std::move(key), value(depth + 1)});
    } while (goesOn("}"));
  }

  bool goesOn(std::string_view end) {
    skipSpace();
    if (take(end)) return false;
    if (!take(",")) fail("a comma or " + std::string(end));
    return true;
  }

  // from_chars takes what JSON doesn't: "01", "1." and words.
  double number() {
    const size_t begin = at;
    take("-");
    if (!take("0")) digits();
    if (take(".")) digits();
    if (peek() == 'e' || peek() == 'E') {
      ++at;
      if (!take("+")) take("-");
      digits();
    }
    double found = 0;
#ifdef __cpp_lib_to_chars
    const bool fits = std::from_chars(text.data() + begin, text.data() + at, found).ec == std::errc();
#else  // where a library lacks that for doubles, no program changes the locale
    errno = 0;
    found = std::strtod(std::string(text.substr(begin, at - begin)).c_str(), nullptr);
    const bool fits = errno == 0;
#endif
    if (!fits) fail("a number that is not as large or small");
    return found;
  }

  void digits() {
    const size_t end = std::min(text.find_first_not_of("0123456789", at), text.size());
    if (end == at) fail(at < text.size() ? "a value" : "more");
    at = end;
  }

  std::string string() {
    if (!take("\"")) fail("a text in quotes");
    std::string out;
    while (!take("\"")) {
      if (at == text.size() || uint8_t(peek()) < ' ') fail("a closing quote");
      if (take("\\")) {
        escape(&out);
      } else {
        out += text[at++];
      }
    }
    return out;
  }

  void escape(std::string* out) {
    constexpr std::string_view kLetters = "\"\\/bfnrt", kMeant = "\"\\/\b\f\n\r\t";
    if (take("u")) return appendUtf8(codePoint(), out);
    const size_t which = at < text.size() ? kLetters.find(text[at]) : text.npos;
    if (which == text.npos) fail("one of \"\\/bfnrtu");
    ++at;
    *out += kMeant[which];
  }

  // Beyond the first 65,536 code points two of them make one.
  uint32_t codePoint() {
    const uint32_t high = fourDigits();
    if (high < 0xD800 || high > 0xDFFF) return high;
    const uint32_t low = high < 0xDC00 && take("\\u") ? fourDigits() : 0;
    if (low < 0xDC00 || low > 0xDFFF) fail("the other half of a letter");
    return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
  }

  uint32_t fourDigits() {
    uint32_t code = 0;
    const char* begin = text.data() + at;
    if (text.size() - at < 4 || std::from_chars(begin, begin + 4, code, 16).ptr != begin + 4)
      fail("four digits from 0 to F");
    at += 4;
    return code;
  }

  std::string_view text;
  size_t at = 0;
};

}  // namespace

const JsonValue* JsonValue::find(std::string_view key) const {
  const JsonValue* found = nullptr;
  for (const auto& [name, value] : object)
    if (name == key) found = &value;
  return found;
}

JsonValue readJson(std::string_view text) { return JsonReader(text).read(); }
