// What a key, a word, a name or a colour of a page source means.
#include <algorithm>
#include <cstdio>
#include <utility>

#include "kit/lsp/features.h"
#include "kit/lsp/lspjson.h"
#include "kit/pictures/showncolor.h"
#include "kit/source/sourcekeys.h"

using nlohmann::json;

namespace {

json hoverJson(const EditedText& text, size_t begin, size_t end, const std::string& markdown) {
  return {{"contents", {{"kind", "markdown"}, {"value", markdown}}}, {"range", rangeJson(text.rangeOf(begin, end))}};
}

std::string hex(uint32_t rgb) {
  char text[16];
  std::snprintf(text, sizeof text, "#%06X", rgb);
  return text;
}

struct PairAt {
  const LoosePair* pair = nullptr;
  const LooseNode* map = nullptr;  // that it is in
  bool isValue = false;            // the offset is in its value, a scalar
};

PairAt pairAt(const LooseNode& node, size_t offset) {
  for (const LoosePair& pair : node.map) {
    if (pair.begin <= offset && offset <= pair.end) return {&pair, &node, false};
    if (pair.value.isScalar() && pair.value.begin <= offset && offset <= pair.value.end) return {&pair, &node, true};
    if (const PairAt found = pairAt(pair.value, offset); found.pair) return found;
  }
  for (const LooseNode& item : node.list)
    if (const PairAt found = pairAt(item, offset); found.pair) return found;
  return {};
}

std::string kindOf(const SourceObject& object) {
  switch (object.kind) {
    case ObjectKind::root: return "the page";
    case ObjectKind::style: return "a text style";
    case ObjectKind::line: return "a line of a textContainer";
    default: break;
  }
  if (object.type.empty()) return object.takesMore ? "a widget" : "a plain box";
  return (object.type == "image" ? "an " : "a ") + object.type;
}

// Plain attributes of what is named, as written.
std::string saidOf(const SourceObject& object, std::initializer_list<const char*> keys) {
  std::string all;
  for (const char* key : keys)
    if (const LoosePair* pair = object.node->find(key); pair && pair->value.isScalar())
      all += (all.empty() ? "" : ", ") + std::string(key) + ": " + pair->value.text;
  return all;
}

std::string aboutName(const PageView& view, NameKind kind, const std::string& name) {
  if (kind == NameKind::madeBy) {
    const LooseNode* body = view.templateNamed(name);
    if (!body) return "";
    std::string text = "**" + name + "**, a template";
    const LoosePair* parameters = body->find("parameters");
    for (const LoosePair& parameter : parameters ? parameters->value.map : std::vector<LoosePair>())
      text +=
          "\n- `" + parameter.key + "`" + (parameter.value.isScalar() ? ", without it " + parameter.value.text : "");
    return text;
  }
  if (kind == NameKind::constant) {
    const LoosePair* all = view.top.find("constants");
    const LoosePair* constant = all ? all->value.find(name) : nullptr;
    if (!constant) return "";
    const std::string value = constant->value.isScalar() ? ": `" + constant->value.text + "`" : "";
    return "**" + name + "**, a constant" + value;
  }
  if (kind == NameKind::parameter)
    return "**" + name.substr(name.find('.') + 1) + "**, a parameter of " + name.substr(0, name.find('.'));
  const SourceObject* object = view.named(kind, name);
  if (!object) return "";
  const std::string said = object->kind == ObjectKind::style
                               ? saidOf(*object, {"style", "font", "size", "color", "bgColor", "antialias"})
                               : saidOf(*object, {"x", "y", "width", "height", "value", "src"});
  return "**" + name + "**, " + kindOf(*object) + (said.empty() ? "" : "\n\n" + said);
}

std::string aboutKey(const PageView& view, const LooseNode& map, const std::string& key) {
  if (const SourceObject* object = view.objectOf(map)) {
    const auto known = objectKey(object->kind, object->type, key);
    if (known) return "**" + key + "** of " + kindOf(*object) + "\n\n" + keyHelp(*known);
    const std::string owners = whatHas(key);
    return owners.empty() ? "" : "**" + key + "**: nothing reads it here; " + owners + " has one";
  }
  if (&map != &view.top) return "";
  for (const SourceKey& known : topKeys())
    if (known.name == key) return "**" + key + "**\n\n" + keyHelp(known);
  return "";
}

// The kinds of widgets, each with what it adds to what every widget has.
std::string aboutKind(const SourceObject& object) {
  static constexpr std::string_view kKinds[][2] = {{"group", "widgets that lie and show together"},
                                                   {"text", "a text in a style"},
                                                   {"number", "a whole number in a range, which keys move"},
                                                   {"select", "one of several choices"},
                                                   {"textContainer", "a list of lines that scrolls"},
                                                   {"slider", "a bar that shows a value in a range"},
                                                   {"image", "a picture"},
                                                   {"frame", "a page inside the page"}};
  for (const auto& [kind, help] : kKinds) {
    if (kind != object.type) continue;
    std::string own;
    for (const SourceKey& key : objectKeys(object.kind, kind))
      if (!objectKey(object.kind, "", key.name)) own += (own.empty() ? "" : ", ") + ("`" + std::string(key.name) + "`");
    return "**" + object.type + "**: " + std::string(help) + (own.empty() ? "" : "\n\nHas also " + own);
  }
  return "";
}

}  // namespace

std::string aboutPageName(SourceViews& views, const std::string& path, NameKind kind, const std::string& name) {
  for (const auto& [file, view] : views.relatedPages(path))
    if (const std::string text = aboutName(*view, kind, name); !text.empty()) return text;
  return "";
}

json hoverPage(SourceViews& views, const std::string& path, size_t offset) {
  const auto view = views.page(path);
  for (const ColorMention& color : view->colors)
    if (color.begin <= offset && offset <= color.end)
      return hoverJson(*view->text, color.begin, color.end,
                       "a 16-bit page shows `" + hex(shownColor(color.rgb)) + "`; nearest of that hue: write `" +
                           hex(colorOfSameHue(color.rgb)) + "`, which shows as `" +
                           hex(shownColor(colorOfSameHue(color.rgb))) + "`");
  if (const NameMention* name = view->nameAt(offset))
    if (const std::string text = aboutPageName(views, path, name->kind, name->name); !text.empty())
      return hoverJson(*view->text, name->begin, name->end, text);
  const auto [pair, map, isValue] = pairAt(view->top, offset);
  if (!pair) return nullptr;
  if (isValue) {
    const SourceObject* object = pair->key == "type" ? view->objectOf(*map) : nullptr;
    const std::string text = object ? aboutKind(*object) : "";
    return text.empty() ? json() : hoverJson(*view->text, pair->value.begin, pair->value.end, text);
  }
  const std::string text = aboutKey(*view, *map, pair->key);
  return text.empty() ? json() : hoverJson(*view->text, pair->begin, pair->end, text);
}

json colorsOfPage(const PageView& view) {
  json result = json::array();
  for (const ColorMention& color : view.colors) {
    const auto part = [&](int shift) { return double(color.rgb >> shift & 255) / 255; };
    result.push_back({{"range", rangeJson(view.text->rangeOf(color.begin, color.end))},
                      {"color", {{"red", part(16)}, {"green", part(8)}, {"blue", part(0)}, {"alpha", 1}}}});
  }
  return result;
}

json colorPresentations(const json& color, const TextRange& range) {
  uint32_t rgb = 0;
  for (const char* part : {"red", "green", "blue"}) {
    const json& value = memberOf(color, part);
    if (!value.is_number()) throw LspError(LspErrorCode::invalidParams, "a part of a colour is a number from 0 to 1");
    rgb = rgb << 8 | uint32_t(std::clamp(value.get<double>(), 0.0, 1.0) * 255 + 0.5);
  }
  json result = json::array();
  const auto add = [&](uint32_t written, const std::string& what) {
    result.push_back({{"label", hex(written) + what + ", shows as " + hex(shownColor(written))},
                      {"textEdit", {{"range", rangeJson(range)}, {"newText", hex(written)}}}});
  };
  add(rgb, "");
  if (colorOfSameHue(rgb) != rgb) add(colorOfSameHue(rgb), " of the same hue");
  return result;
}
