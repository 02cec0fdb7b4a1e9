#include "kit/diff/pagediff.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <set>

#include "kit/diff/linediff.h"
#include "kit/diff/pagetrees.h"
#include "kit/files.h"
#include "kit/run/longtext.h"
#include "kit/source/pagebuild.h"
#include "kit/yaml/writeyaml.h"

namespace {

namespace fs = std::filesystem;

constexpr size_t kLinesAround = 2;

bool isList(const std::string& key) { return key == "children" || key == "textStyles"; }

class PageComparison {
 public:
  PageComparison(const std::string& pathA, const std::string& pathB, bool compiled)
      : a(pathA, compiled), b(pathB, compiled) {}

  std::vector<std::string> differences() {
    compareAttributes("", a.tree, b.tree);
    if (a.root && b.root) compareWidgets(*a.root, *b.root);
    compareScriptFiles();
    return std::move(found);
  }

 private:
  void say(const std::string& line) { found.push_back(line); }

  static std::string shown(const YamlNode& node) {
    if (node.isScalar()) return yamlOnOneLine(node.text);
    std::string text;
    for (const std::string& line : linesOf(writeYaml(node))) {
      const size_t begin = line.find_first_not_of(' ');
      if (begin != std::string::npos) text += (text.empty() ? "" : " ") + line.substr(begin);
    }
    return text;
  }

  void compareAttributes(const std::string& label, const YamlNode& before, const YamlNode& after) {
    const std::string prefix = label.empty() ? "" : label + ": ";
    for (const YamlPair& pair : before.map) {
      if (isList(pair.key) || (label.empty() && pair.key == "page")) continue;
      const YamlNode* other = after.find(pair.key);
      if (!other) {
        say(prefix + pair.key + ": " + briefly(pair.value) + " is gone");
      } else if (writeYaml(*other) != writeYaml(pair.value)) {
        compareValues(prefix + pair.key, pair.value, *other);
      }
    }
    for (const YamlPair& pair : after.map)
      if (!isList(pair.key) && !before.find(pair.key) && !(label.empty() && pair.key == "page"))
        say(prefix + pair.key + ": " + briefly(pair.value) + " is new");
  }

  static std::string briefly(const YamlNode& node) {
    return node.isScalar() && linesOf(node.text).size() > 1 ? "a text of several lines" : shown(node);
  }

  void compareValues(const std::string& what, const YamlNode& before, const YamlNode& after) {
    const bool isText = before.isScalar() && after.isScalar();
    const std::vector<std::string> linesBefore = linesOf(before.text), linesAfter = linesOf(after.text);
    if (!isText || (linesBefore.size() < 2 && linesAfter.size() < 2))
      return say(what + ": " + shown(before) + " -> " + shown(after));
    const std::vector<std::string> lines = lineDifferences(linesBefore, linesAfter, kLinesAround);
    if (lines.empty()) return say(what + ": " + shown(before) + " -> " + shown(after));  // line ends
    say(what + ":");
    for (const std::string& line : lines) say("  " + line);
  }

  void compareWidgets(const WidgetNode& before, const WidgetNode& after) {
    if (before.content == after.content) return;
    compareAttributes(after.label, *before.node, *after.node);
    compareStyles(*before.node, *after.node);
    const auto pairs = matchChildren(before, after);
    std::set<const WidgetNode*> matched;
    for (const auto& [old, now] : pairs) {
      matched.insert(now);
      if (!now) {
        say(old->label + ": " + old->type + " is gone from " + before.label);
        compareMoved(*old);
        continue;
      }
      if (now->parent != &after) say(now->label + ": now in " + now->parent->label);
      compareWidgets(*old, *now);
    }
    for (const auto& child : after.children)
      if (!matched.contains(child.get()) && !unique(a, child->name))
        say(child->label + ": " + child->type + " is new in " + after.label);
    compareOrder(after, pairs);
  }

  // What was in a widget that is gone may be elsewhere.
  void compareMoved(const WidgetNode& gone) {
    for (const auto& child : gone.children) {
      const WidgetNode* now = unique(a, child->name) ? unique(b, child->name) : nullptr;
      if (!now) {
        compareMoved(*child);
        continue;
      }
      say(now->label + ": now in " + now->parent->label);
      compareWidgets(*child, *now);
    }
  }

  static const WidgetNode* unique(const PageOfWidgets& page, const std::string& name) {
    const auto at = page.named.find(name);
    return name.empty() || at == page.named.end() ? nullptr : at->second;
  }

  using WidgetPairs = std::vector<std::pair<const WidgetNode*, const WidgetNode*>>;

  // Each of the old children with what it has become; null for nothing.
  WidgetPairs matchChildren(const WidgetNode& before, const WidgetNode& after) {
    WidgetPairs pairs;
    std::vector<const WidgetNode*> oldOnes, newOnes;  // without names by which they could be found
    for (const auto& child : before.children) {
      const WidgetNode* now = unique(a, child->name) ? unique(b, child->name) : nullptr;
      if (now) {
        pairs.emplace_back(child.get(), now);
      } else {
        oldOnes.push_back(child.get());
      }
    }
    for (const auto& child : after.children)
      if (!unique(a, child->name) || !unique(b, child->name)) newOnes.push_back(child.get());
    matchByContent(oldOnes, newOnes, pairs);
    return pairs;
  }

  // Equal ones first; what lies between two of these is matched by kind, in its order.
  static void matchByContent(const std::vector<const WidgetNode*>& oldOnes,
                             const std::vector<const WidgetNode*>& newOnes, WidgetPairs& pairs) {
    const auto contents = [](const std::vector<const WidgetNode*>& widgets) {
      std::vector<std::string> all;
      for (const WidgetNode* widget : widgets) all.push_back(widget->content);
      return all;
    };
    auto equal = equalLines(contents(oldOnes), contents(newOnes));
    equal.emplace_back(oldOnes.size(), newOnes.size());
    size_t i = 0, j = 0;
    for (const auto& [inOld, inNew] : equal) {
      for (; i < inOld; ++i) {
        const auto begin = newOnes.begin() + std::ptrdiff_t(j), end = newOnes.begin() + std::ptrdiff_t(inNew);
        const auto like = std::find_if(begin, end, [&](const WidgetNode* widget) {
          return widget->type == oldOnes[i]->type && widget->name.empty() == oldOnes[i]->name.empty();
        });
        pairs.emplace_back(oldOnes[i], like == end ? nullptr : *like);
        if (like != end) j = size_t(like - newOnes.begin()) + 1;
      }
      if (inOld < oldOnes.size()) pairs.emplace_back(oldOnes[inOld], newOnes[inNew]);
      i = inOld + 1, j = inNew + 1;
    }
  }

  // What is drawn later lies on top.
  void compareOrder(const WidgetNode& after, const WidgetPairs& pairs) {
    std::map<const WidgetNode*, size_t> place;
    for (size_t i = 0; i < after.children.size(); ++i) place[after.children[i].get()] = i;
    std::vector<std::pair<size_t, const WidgetNode*>> stayed;  // by the old order
    for (const auto& [old, now] : pairs)
      if (now && place.contains(now)) {
        const auto& siblings = old->parent->children;
        const auto at =
            std::find_if(siblings.begin(), siblings.end(), [one = old](const auto& each) { return each.get() == one; });
        stayed.emplace_back(size_t(at - siblings.begin()), now);
      }
    std::sort(stayed.begin(), stayed.end());
    const auto earlier = [&](const auto& x, const auto& y) { return place[x.second] < place[y.second]; };
    if (std::is_sorted(stayed.begin(), stayed.end(), earlier)) return;
    std::sort(stayed.begin(), stayed.end(), earlier);
    std::string order;
    for (const auto& [old, now] : stayed) order += (order.empty() ? "" : ", ") + now->label;
    say(after.label + ": its children have another order: " + order);
  }

  void compareStyles(const YamlNode& before, const YamlNode& after) {
    const auto styles = [](const YamlNode& page) {
      std::map<std::string, const YamlNode*> all;
      if (const YamlNode* list = page.find("textStyles"))
        for (const YamlNode& style : list->list) all[style.textOf("name")] = &style;
      return all;
    };
    const auto old = styles(before), now = styles(after);
    for (const auto& [name, style] : old) {
      if (!now.contains(name)) {
        say("style " + name + ": is gone");
      } else {
        compareAttributes("style " + name, *style, *now.at(name));
      }
    }
    for (const auto& [name, style] : now)
      if (!old.contains(name)) say("style " + name + ": is new");
  }

  static std::optional<std::vector<uint8_t>> bytesOf(const fs::path& path) try {
    return readFile(path.generic_string());
  } catch (const KitError&) {
    return std::nullopt;  // the pages are what is compared
  }

  // Those that both pages name.
  void compareScriptFiles() {
    for (const std::string& name : scriptFiles(a)) {
      const std::vector<std::string> others = scriptFiles(b);
      if (std::find(others.begin(), others.end(), name) == others.end()) continue;
      const auto before = bytesOf(a.folder / name), after = bytesOf(b.folder / name);
      if (!before || !after || *before == *after) continue;
      say("file " + name + ":");
      if (!name.ends_with(".bob")) {
        say("  differs");
        continue;
      }
      const auto lines = [](const std::vector<uint8_t>& bytes) {
        return linesOf({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
      };
      for (const std::string& line : lineDifferences(lines(*before), lines(*after), kLinesAround)) say("  " + line);
    }
  }

  static std::vector<std::string> scriptFiles(const PageOfWidgets& page) {
    std::vector<std::string> names;
    const YamlNode* scripts = page.root ? page.root->node->find("scripts") : nullptr;
    if (scripts)
      for (const YamlNode& name : scripts->list) names.push_back(name.text);
    return names;
  }

  const PageOfWidgets a, b;
  std::vector<std::string> found;
};

}  // namespace

std::vector<std::string> pageDifferences(const std::string& a, const std::string& b) {
  const bool compiled = !isPageSource(a) || !isPageSource(b);
  return PageComparison(a, b, compiled).differences();
}
