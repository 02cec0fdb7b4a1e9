#include "kit/source/sourcevalue.h"

#include <charconv>

#include "engine/screen/display.h"
#include "engine/screen/standardcolor.h"
#include "host/color.h"
#include "kit/source/base64.h"
#include "kit/suggest.h"

namespace {

constexpr size_t kMostShown = 40;  // bytes of a value in a message

[[noreturn]] void fail(const YamlNode& node, const std::string& text) { throw SourceFault{node.place, text}; }

PageValue number(PageTag tag, uint32_t n) {
  PageValue result;
  result.tag = tag;
  result.number = n;
  return result;
}

std::optional<bool> parseBoolean(std::string_view text) {
  if (text == "true" || text == "yes" || text == "1") return true;
  if (text == "false" || text == "no" || text == "0") return false;
  return std::nullopt;
}

uint32_t rgbColor(const YamlNode& node, bool indexed) {
  if (indexed) fail(node, "\"#RRGGBB\" is for 16-bit pages; an 8-bit page takes an index of its colour table");
  const std::string digits = node.text.substr(1);
  const auto n = digits.size() == 6 ? parseInteger("0x" + digits) : std::nullopt;
  if (!n) fail(node, shownNode(node) + " is no colour of the form \"#RRGGBB\"");
  return rgbToYCrCb(uint32_t(*n) << 8);
}

}  // namespace

std::string shownNode(const YamlNode& node) {
  switch (node.kind) {
    case YamlNode::Kind::null: return "nothing";
    case YamlNode::Kind::list: return "a list";
    case YamlNode::Kind::map: return "a map";
    case YamlNode::Kind::scalar: break;
  }
  std::string text = node.text.substr(0, kMostShown);
  for (char& c : text)
    if (uint8_t(c) < ' ') c = ' ';
  return "'" + text + (node.text.size() > kMostShown ? "...'" : "'");
}

const std::string& scalarText(const YamlNode& node, const char* what) {
  if (!node.isScalar()) fail(node, std::string("expecting ") + what + ", found " + shownNode(node));
  return node.text;
}

std::optional<int64_t> parseInteger(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const bool hex = text.starts_with("0x") || text.starts_with("0X");
  if (hex) text.remove_prefix(2);
  uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, hex ? 16 : 10);
  if (error != std::errc() || end != text.data() + text.size() || value > 0xFFFFFFFF) return std::nullopt;
  return negative ? -int64_t(value) : int64_t(value);
}

uint16_t positionValue(const YamlNode& node) {
  const auto n = parseInteger(scalarText(node, "a number of pixels"));
  if (!n) fail(node, shownNode(node) + " is no whole number of pixels from 0 to 65535");
  if (*n < 0 || *n > 65535) fail(node, node.text + " lies outside 0 to 65535");
  return uint16_t(*n);
}

PageValue integerValue(const YamlNode& node) {
  const auto n = parseInteger(scalarText(node, "a whole number"));
  if (!n || *n < INT32_MIN) fail(node, shownNode(node) + " is no whole number of 32 bits");
  return number(PageTag::integer, uint32_t(*n));
}

PageValue booleanValue(const YamlNode& node) {
  const std::string& text = scalarText(node, "true or false");
  const auto flag = parseBoolean(text);
  // Any word is a number to the engine, so the tag's own values come back as they were.
  if (!flag && node.tag == "!bool")
    if (const auto n = parseInteger(text)) return number(PageTag::boolean, uint32_t(*n));
  if (!flag) fail(node, shownNode(node) + " is neither true nor false" + suggestion(text, {"true", "false"}));
  return number(PageTag::boolean, *flag);
}

PageValue colorValue(const YamlNode& node, bool indexed) {
  const std::string& text = scalarText(node, "a colour");
  const int depth = indexed ? 8 : 16;
  if (text == "black") return number(PageTag::color, standardColorFor(kColorBlack, depth));
  if (text == "white") return number(PageTag::color, standardColorFor(kColorWhite, depth));
  if (text == "transparent") return number(PageTag::color, standardColorFor(kColorTransparent, depth));
  if (text.starts_with('#')) return number(PageTag::color, rgbColor(node, indexed));
  const auto n = parseInteger(text);
  if (n && *n >= 0) return number(PageTag::color, uint32_t(*n));
  fail(node, shownNode(node) + " is no colour; a colour is " + (indexed ? "" : "\"#RRGGBB\", ") +
                 "black, white, transparent or a number" + suggestion(text, {"black", "white", "transparent"}));
}

PageValue stringValue(const YamlNode& node) {
  PageValue result;
  result.tag = PageTag::string;
  result.bytes = node.isNull() ? "" : scalarText(node, "text");
  if (result.bytes.find('\0') != std::string::npos) fail(node, "a text can't hold a zero byte");
  return result;
}

PageValue scriptDataValue(const YamlNode& node) {
  const auto bytes = base64Decode(node.isNull() ? "" : scalarText(node, "base64"));
  if (!bytes) fail(node, "this is no base64");
  PageValue result;
  result.tag = PageTag::script;
  result.bytes = *bytes;
  return result;
}
