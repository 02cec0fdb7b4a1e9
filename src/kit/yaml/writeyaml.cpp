#include "kit/yaml/writeyaml.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

bool isControl(char c) { return uint8_t(c) < ' ' || c == '\x7F'; }

// Whether the text can do without quotes anywhere. Not every such text is found: quotes do no harm.
bool isPlainText(const std::string& text) {
  constexpr std::array kOtherThings{"null", "Null", "NULL"};
  const auto isWordCharacter = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '.' ||
           c == '/' || c == '-';
  };
  if (text.empty() || !isWordCharacter(text.front()) || !isWordCharacter(text.back())) return false;
  if (text.front() == '-' && (text.size() == 1 || text[1] < '0' || text[1] > '9')) return false;
  if (text.starts_with("...")) return false;
  if (std::find(kOtherThings.begin(), kOtherThings.end(), text) != kOtherThings.end()) return false;
  return std::all_of(text.begin(), text.end(), [&](char c) {
    return isWordCharacter(c) || c == ' ' || c == '(' || c == ')' || c == ';' || c == '+' || c == '=' || c == '$';
  });
}

// The tag before a value, in angle brackets where it wouldn't be read as one without.
std::string tagWord(const std::string& tag) {
  const bool isPlain = tag.starts_with('!') && tag.find_first_not_of(kYamlTagCharacters) == tag.npos;
  return isPlain ? tag : "!<" + tag + ">";
}

class YamlWriter {
 public:
  std::string out;

  // After "key:" or "-"; `indent` is where a map or list begins on lines of its own.
  void value(const YamlNode& node, int indent) {
    const std::string tag = node.tag.empty() ? "" : " " + tagWord(node.tag);
    switch (node.kind) {
      case YamlNode::Kind::null: out += tag + "\n"; break;
      case YamlNode::Kind::scalar: scalar(node, tag, indent); break;
      case YamlNode::Kind::list:
        out += tag + (node.list.empty() ? " []\n" : "\n");
        items(node, indent);
        break;
      case YamlNode::Kind::map:
        out += tag + (node.map.empty() ? " {}\n" : "\n");
        pairs(node, indent, false);
        break;
    }
  }

  void pairs(const YamlNode& node, int indent, bool firstFollowsDash) {
    for (const YamlPair& pair : node.map) {
      if (!firstFollowsDash) out += std::string(size_t(indent), ' ');
      firstFollowsDash = false;
      out += (isPlainText(pair.key) ? pair.key : quotedYaml(pair.key)) + ":";
      value(pair.value, indent + 2);
    }
  }

 private:
  void items(const YamlNode& node, int indent) {
    for (const YamlNode& item : node.list) {
      out += std::string(size_t(indent), ' ') + "-";
      if (item.isMap() && item.tag.empty() && !item.map.empty()) {
        out += " ";
        pairs(item, indent + 2, true);
      } else {
        value(item, indent + 2);
      }
    }
  }

  void scalar(const YamlNode& node, const std::string& tag, int indent) {
    const std::string& text = node.text;
    if (tag.empty() && canFollowBar(text)) {  // the parser fails at a tag and a bar in a list
      block(text, indent);
    } else if (node.style == YamlNode::Style::plain && isPlainText(text)) {
      out += tag + " " + text + "\n";
    } else {
      out += tag + " " + quotedYaml(text) + "\n";
    }
  }

  // Several lines that all can be read, the first of which shows how far they are indented.
  static bool canFollowBar(const std::string& text) {
    return text.find('\n') != std::string::npos && text[0] != ' ' && text[0] != '\n' &&
           std::none_of(text.begin(), text.end(), [](char c) { return isControl(c) && c != '\n'; });
  }

  void block(const std::string& text, int indent) {
    out += " |";
    if (!text.ends_with('\n')) out += '-';
    if (text.ends_with("\n\n")) out += '+';
    out += '\n';
    for (size_t at = 0; at < text.size();) {
      const size_t end = std::min(text.find('\n', at), text.size());
      if (end > at) out += std::string(size_t(indent), ' ') + text.substr(at, end - at);
      out += '\n';
      at = end + 1;
    }
  }
};

}  // namespace

std::string writeYaml(const YamlNode& node) {
  YamlWriter writer;
  if (node.isMap() && node.tag.empty() && !node.map.empty()) {
    writer.pairs(node, 0, false);
  } else {
    writer.value(node, 0);
    writer.out.erase(0, writer.out.find_first_not_of(" \n"));
  }
  return writer.out;
}

std::string quotedYaml(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    if (c == '\n') {
      out += "\\n";
    } else if (isControl(c)) {
      char code[8];
      std::snprintf(code, sizeof code, "\\x%02x", unsigned(uint8_t(c)));
      out += code;
    } else {
      out += c;
    }
  }
  return out + '"';
}

std::string yamlOnOneLine(const std::string& text) { return isPlainText(text) ? text : quotedYaml(text); }

std::string yamlScalar(const std::string& text, int indent) {
  YamlNode node;
  node.kind = YamlNode::Kind::scalar;
  node.text = text;
  YamlWriter writer;
  writer.value(node, indent);
  return writer.out.substr(1, writer.out.size() - 2);  // without the space before and the line end after
}
