// Writes JSON, for the tools that read what kpg prints.
//
// Texts of pages may have any bytes, while JSON is UTF-8: a byte that is none comes out as U+FFFD.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

enum class JsonForm { indented, oneLine };  // the one ends with a line's end, the other without

class JsonWriter {
 public:
  explicit JsonWriter(JsonForm f = JsonForm::indented) : form(f) {}

  // Inside an object each value has a key; inside an array, and outermost, it has none.
  void beginObject(std::string_view key = {}) { begin(key, '{'); }
  void endObject() { end('}'); }
  void beginArray(std::string_view key = {}) { begin(key, '['); }
  void endArray() { end(']'); }
  void string(std::string_view key, std::string_view text);
  void number(std::string_view key, int64_t n);
  void boolean(std::string_view key, bool is);

  // The whole text, once all is ended.
  const std::string& text() const { return out; }

 private:
  void begin(std::string_view key, char bracket);
  void end(char bracket);
  void item(std::string_view key);
  void quoted(std::string_view text);
  void newLine();

  const JsonForm form;
  std::string out;
  size_t depth = 0;
  bool isFirst = true;  // of the innermost object or array
};
