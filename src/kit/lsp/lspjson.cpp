#include "kit/lsp/lspjson.h"

#include <algorithm>

using nlohmann::json;

namespace {

constexpr int64_t kMostOfPosition = INT32_MAX;

[[noreturn]] void refuse(const char* key, const char* expected) {
  throw LspError(LspErrorCode::invalidParams, std::string("'") + key + "' is not " + expected);
}

}  // namespace

json positionJson(TextPosition position) { return {{"line", position.line}, {"character", position.character}}; }

json rangeJson(const TextRange& range) {
  return {{"start", positionJson(range.begin)}, {"end", positionJson(range.end)}};
}

const json* findMember(const json& object, const char* key) {
  const auto found = object.is_object() ? object.find(key) : object.end();
  return found == object.end() || found->is_null() ? nullptr : &*found;
}

const json& memberOf(const json& object, const char* key) {
  const json* member = findMember(object, key);
  if (!member) refuse(key, "given");
  return *member;
}

std::string textOf(const json& object, const char* key) {
  const json& member = memberOf(object, key);
  if (!member.is_string()) refuse(key, "a text");
  return member.get<std::string>();
}

int numberOf(const json& object, const char* key) {
  const json& member = memberOf(object, key);
  if (!member.is_number_integer()) refuse(key, "a whole number");
  // Editors write the greatest number for "to the end".
  if (member.is_number_unsigned()) return int(std::min<uint64_t>(member.get<uint64_t>(), kMostOfPosition));
  return int(std::clamp<int64_t>(member.get<int64_t>(), -1, kMostOfPosition));
}

TextPosition positionOf(const json& json) { return {numberOf(json, "line"), numberOf(json, "character")}; }

TextRange rangeOf(const json& json) { return {positionOf(memberOf(json, "start")), positionOf(memberOf(json, "end"))}; }
