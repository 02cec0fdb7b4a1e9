#include "kit/diff/pagetrees.h"

#include <algorithm>

#include "kit/files.h"
#include "kit/run/longtext.h"
#include "kit/source/pagebuild.h"
#include "kit/source/pagedump.h"
#include "kit/yaml/readyaml.h"
#include "kit/yaml/writeyaml.h"

namespace {

// A comment of a dump, "# NAME:0003 1a 02 00 GREF 0002 ; tune", without what depends on where it stands.
std::string instructionOf(const std::string& comment) {
  const auto isHex = [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); };
  const auto isOffset = [&](size_t at) {
    return at + 5 < comment.size() && comment[at] == ':' && comment[at + 5] == ' ' &&
           std::all_of(comment.begin() + std::ptrdiff_t(at) + 1, comment.begin() + std::ptrdiff_t(at) + 5, isHex);
  };
  size_t at = 0;
  while (at < comment.size() && !isOffset(at)) ++at;
  if (at == comment.size()) return comment;
  for (at += 6; at + 2 < comment.size() && isHex(comment[at]) && isHex(comment[at + 1]) && comment[at + 2] == ' ';)
    at += 3;
  at = comment.find_first_not_of(' ', at);
  return at == std::string::npos ? comment : comment.substr(at);
}

// Puts the instructions that a dump has above its scripts in the place of their bytes.
void listScripts(YamlNode& node, const std::vector<std::string>& lines) {
  for (YamlNode& item : node.list) listScripts(item, lines);
  for (YamlPair& pair : node.map) {
    listScripts(pair.value, lines);
    if (pair.value.tag != "!scriptdata") continue;
    std::vector<std::string> listing;
    for (size_t line = size_t(pair.place.line) - 1; line-- > 0;) {
      const size_t begin = lines[line].find_first_not_of(' ');
      if (begin == std::string::npos || lines[line][begin] != '#') break;
      listing.insert(listing.begin(), instructionOf(lines[line].substr(begin + 1)));
    }
    if (listing.empty()) continue;
    pair.value.text.clear();
    for (const std::string& instruction : listing) pair.value.text += instruction + "\n";
  }
}

YamlNode treeOf(const std::string& path, bool compiled) {
  if (!compiled) return parseYaml(path, plainPageSource(path).text);
  const std::string dump = dumpPage(path, isPageSource(path) ? compilePage(path).bytes : readFile(path));
  YamlNode tree = parseYaml(path, dump);
  listScripts(tree, linesOf(dump));
  return tree;
}

}  // namespace

PageOfWidgets::PageOfWidgets(const std::string& path, bool compiled)
    : tree(treeOf(path, compiled)), folder(std::filesystem::path(path).parent_path()) {
  if (const YamlNode* page = tree.find("page")) root = widgetOf(*page, nullptr, 0);
}

std::unique_ptr<WidgetNode> PageOfWidgets::widgetOf(const YamlNode& node, const WidgetNode* parent, size_t number) {
  auto widget = std::make_unique<WidgetNode>();
  widget->node = &node;
  widget->parent = parent;
  widget->name = node.textOf("name");
  widget->type = node.textOf("type");
  if (widget->type.empty()) widget->type = parent && parent->type == "textContainer" ? "line" : "box";
  widget->label = !parent                 ? "page"
                  : !widget->name.empty() ? widget->name
                                          : widget->type + std::to_string(number) + " of " + parent->label;
  widget->content = writeYaml(node);
  if (!widget->name.empty() && parent) {
    const auto [at, isNew] = named.emplace(widget->name, widget.get());
    if (!isNew) at->second = nullptr;
  }
  std::map<std::string, size_t> numbers;
  if (const YamlNode* children = node.find("children"))
    for (const YamlNode& child : children->list)
      widget->children.push_back(widgetOf(child, widget.get(), ++numbers[child.textOf("type")]));
  return widget;
}
