// Reads JSON, strictly as RFC 8259 has it. Texts come out as UTF-8.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct JsonValue {
  enum class Kind { null, boolean, number, text, array, object } kind = Kind::null;
  bool isTrue = false;
  double number = 0;
  std::string text;
  std::vector<JsonValue> array;
  std::vector<std::pair<std::string, JsonValue>> object;  // in order; a key may come twice

  const JsonValue* find(std::string_view key) const;  // the last with that key; null when there is none
};

inline constexpr int kMostJsonDepth = 100;

// Throws KitError, which says what was expected and at which byte.
JsonValue readJson(std::string_view text);
