// Reads JSON, strictly as RFC 8259 has it. Texts come out as UTF-8.
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct JsonMember;

struct JsonValue {
  enum class Kind { null, boolean, number, text, array, object } kind = Kind::null;
  bool isTrue = false;
  double number = 0;
  std::string text;
  std::vector<JsonValue> array;
  std::vector<JsonMember> object;  // in order; a key may come twice

  const JsonValue* find(std::string_view key) const;  // the last with that key; null when there is none
};

struct JsonMember {
  std::string key;
  JsonValue value;
};

inline constexpr int kMostJsonDepth = 100;

// Throws KitError, which says what was expected and at which byte.
JsonValue readJson(std::string_view text);
