#include "kit/expand/instantiate.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "kit/expand/directions.h"
#include "kit/expand/expression.h"
#include "kit/expand/mapedit.h"
#include "kit/source/sourcevalue.h"
#include "kit/suggest.h"

namespace {

constexpr size_t kMaxNodes = 1'000'000;
constexpr size_t kBytesOfNode = 100;  // of text that count as one more
constexpr int kMaxDepth = 600;        // of maps and lists: two for each of the 256 widgets that may nest, and more

// Ends everything.
struct TooLarge {
  KitMessage message;
};

// What can't be made for a reason that has been reported.
struct KnownFault {};

[[noreturn]] void fail(const YamlPlace& place, const std::string& text) { throw SourceFault{place, text}; }

// A map or list of nothing, in place of that.
YamlNode emptied(const YamlNode& node) {
  YamlNode result;
  result.kind = node.kind;
  result.tag = node.tag;
  result.place = node.place;
  result.textLine = node.textLine;
  return result;
}

YamlNode integerNode(size_t n, const YamlNode& at) {
  YamlNode node;
  node.kind = YamlNode::Kind::scalar;
  node.text = std::to_string(n);
  node.place = at.place;
  node.textLine = at.textLine;
  return node;
}

void markUse(YamlNode& node, const std::shared_ptr<const YamlUse>& use) {
  node.place.use = use;
  for (YamlNode& item : node.list) markUse(item, use);
  for (YamlPair& pair : node.map) {
    pair.place.use = use;
    markUse(pair.value, use);
  }
}

class Instantiator {
 public:
  Instantiator(const Definitions& d, SourceFiles& f, std::vector<KitMessage>& e) : definitions(d), files(f), errors(e) {
    for (const auto& [name, value] : definitions.constants) constants.more.push_back(name);
    constants.unknown = [this](const std::string& name) { return constant(name); };
  }

  YamlNode run(const YamlNode& node) {
    YamlNode result;
    try {
      guarded([&] { result = value(node, constants); });
      for (const auto& each : definitions.constants) guarded([&] { constant(each.first); });
    } catch (const TooLarge& e) {
      errors.push_back(e.message);
    }
    return result;
  }

 private:
  // Keeps a fault of what `work` makes, and goes on.
  template <class F>
  void guarded(F&& work) {
    const int depthBefore = depth;
    try {
      work();
    } catch (const SourceFault& fault) {
      errors.push_back(messageAt(fault.at, fault.text));
      depth = depthBefore;
    } catch (const KnownFault&) {
      depth = depthBefore;
    } catch (const KitError& e) {  // of a file
      errors.insert(errors.end(), e.messages.begin(), e.messages.end());
      depth = depthBefore;
    }
  }

  YamlNode value(const YamlNode& node, const Scope& scope) {
    count(node);
    if (node.isScalar()) {
      if (!hasExpression(node.text)) return node;
      YamlNode result = evaluateScalar(node, scope);
      countAll(result);
      return result;
    }
    if (++depth > kMaxDepth) fail(node.place, "is nested too deep");
    YamlNode result = node.isMap() ? map(node, scope) : node.isList() ? list(node, scope) : node;
    --depth;
    return result;
  }

  // -- maps

  YamlNode map(const YamlNode& node, const Scope& scope) {
    YamlNode result = emptied(node);
    const YamlNode* repeat = findDirection(node, "repeat");
    if (repeat && &node != repeatedEntry) fail(repeat->place, "repeat: only an entry of a list can be repeated");
    if (const YamlNode* file = findDirection(node, "include"))
      putAll(result, included(*file, scope, YamlNode::Kind::map));
    if (const YamlNode* name = findDirection(node, "template")) putAll(result, instance(*name, node, scope));
    const size_t given = result.map.size();
    if (given > 0) refuseRepeatedKeys(node);  // which the reader would see no more
    for (const YamlPair& pair : node.map) {
      if (isDirection(pair, "include") || isDirection(pair, "template") || isDirection(pair, "repeat")) continue;
      if (pair.key == "with" && findDirection(node, "template")) continue;
      guarded([&] { put(result, given, {pair.key, pair.place, value(pair.value, scope)}); });
    }
    return result;
  }

  // Puts a pair in place of the one of that key among the first `given`, which a template or a file gave, or at the
  // end.
  static void put(YamlNode& map, size_t given, YamlPair pair) {
    const auto isSame = [&](const YamlPair& p) { return p.key == pair.key; };
    const auto end = map.map.begin() + long(given), old = std::find_if(map.map.begin(), end, isSame);
    if (old == end) {
      map.map.push_back(std::move(pair));
    } else {
      *old = std::move(pair);
    }
  }

  static void putAll(YamlNode& map, YamlNode more) {
    const size_t given = map.map.size();
    for (YamlPair& pair : more.map) put(map, given, std::move(pair));
  }

  YamlNode instance(const YamlNode& source, const YamlNode& node, const Scope& scope) {
    const YamlNode name = value(source, scope);
    const std::string& text = scalarText(name, "the name of a template");
    const auto found = definitions.templates.find(text);
    if (found == definitions.templates.end())
      fail(source.place, "there is no template '" + text + "'" + suggestion(text, definitions.templateNames()));
    if (found->second.isBroken) throw KnownFault();
    Scope inside(constants);
    takeParameters(inside, found->second, text, node, scope);
    YamlNode body = found->second.body;
    return insideOf("template '" + text + "'", source.place, "template '" + text + "' uses itself", body, inside);
  }

  // What a template or a file has, evaluated as used at that place.
  YamlNode insideOf(const std::string& what, const YamlPlace& place, const std::string& circle, YamlNode& node,
                    const Scope& scope) {
    if (std::find(uses.begin(), uses.end(), what) != uses.end()) fail(place, circle);
    if (uses.size() >= kMaxUses) fail(place, "templates and includes are nested more than 64 deep");
    markUse(node, std::make_shared<YamlUse>(YamlUse{what, place}));
    uses.push_back(what);
    struct Leave {
      std::vector<std::string>& uses;
      ~Leave() { uses.pop_back(); }
    } leave{uses};
    return value(node, scope);
  }

  void takeParameters(Scope& inside, const Template& source, const std::string& name, const YamlNode& node,
                      const Scope& scope) {
    const YamlNode nothing;
    const YamlNode* with = node.find("with");
    if (with && !with->isMap()) fail(with->place, "with: expecting a map of parameters, found " + shownNode(*with));
    const std::vector<YamlPair>& given = with ? with->map : nothing.map;
    std::vector<std::string> names, missing;
    for (const YamlPair& parameter : source.parameters) names.push_back(parameter.key);
    for (const YamlPair& pair : given) {
      if (std::find(names.begin(), names.end(), pair.key) != names.end()) continue;
      guarded([&] {
        fail(pair.place, "template '" + name + "' has no parameter '" + pair.key + "'" +
                             (names.empty() ? "" : "; it has " + listOfWords(names)) + suggestion(pair.key, names));
      });
    }
    for (const YamlPair& parameter : source.parameters) {
      if (const YamlNode* own = with ? with->find(parameter.key) : nullptr) {
        inside.define(parameter.key, value(*own, scope));
      } else if (parameter.value.isNull()) {
        missing.push_back(parameter.key);
      } else {
        inside.define(parameter.key, value(parameter.value, inside));
      }
    }
    if (!missing.empty()) fail(node.place, "template '" + name + "' needs " + listOfWords(missing));
  }

  YamlNode included(const YamlNode& source, const Scope& scope, YamlNode::Kind kind) {
    const YamlNode name = value(source, scope);
    YamlNode file = read(name, source.place);
    const std::string path = SourceFiles::pathOf(name.text, source.place);
    if (file.kind != kind && !file.isNull())
      fail(source.place, path + " is " + shownNode(file) + (kind == YamlNode::Kind::map ? ", no map" : ", no list"));
    return insideOf("include: " + path, source.place, path + " includes itself", file, scope);
  }

  const YamlNode& read(const YamlNode& name, const YamlPlace& from) {
    return files.read(scalarText(name, "a file name"), from);
  }

  // -- lists

  YamlNode list(const YamlNode& node, const Scope& scope) {
    YamlNode result = emptied(node);
    for (const YamlNode& item : node.list)
      guarded([&] {
        if (const YamlNode* repeat = findDirection(item, "repeat")) {
          repeated(result, item, *repeat, scope);
        } else {
          addEntry(result, item, scope);
        }
      });
    return result;
  }

  // One entry, or those of a file that has a list.
  void addEntry(YamlNode& into, const YamlNode& item, const Scope& scope) {
    const YamlNode* source = findDirection(item, "include");
    if (source && item.map.size() <= 1u + (findDirection(item, "repeat") != nullptr)) {
      const YamlNode name = value(*source, scope);
      if (read(name, source->place).isList()) {
        YamlNode all = included(*source, scope, YamlNode::Kind::list);
        std::move(all.list.begin(), all.list.end(), std::back_inserter(into.list));
        return;
      }
    }
    into.list.push_back(value(item, scope));
  }

  // How an entry is repeated, and by which names it knows that.
  struct Repetition {
    std::vector<YamlNode> items;
    std::string as = "item", index = "index", count = "count";
  };

  void repeated(YamlNode& into, const YamlNode& item, const YamlNode& repeat, const Scope& scope) {
    const Repetition how = repetition(repeat, scope);
    Scope inside(scope);
    inside.define(how.count, integerNode(how.items.size(), repeat));
    for (size_t i = 0; i < how.items.size(); ++i) {
      inside.define(how.as, how.items[i]);
      inside.define(how.index, integerNode(i, repeat));
      repeatedEntry = &item;
      guarded([&] { addEntry(into, item, inside); });
    }
  }

  Repetition repetition(const YamlNode& repeat, const Scope& scope) {
    Repetition result;
    if (!repeat.isMap()) {
      result.items = items(repeat, scope);
      return result;
    }
    const YamlNode* over = nullptr;
    for (const YamlPair& pair : repeat.map) {
      if (pair.key == "over") {
        over = &pair.value;
      } else if (pair.key == "as") {
        result.as = loopName(pair.value);
      } else if (pair.key == "index") {
        result.index = loopName(pair.value);
      } else if (pair.key == "count") {
        result.count = loopName(pair.value);
      } else {
        const std::vector<std::string> keys{"over", "as", "index", "count"};
        fail(pair.place, "repeat has no '" + pair.key + "'; it has " + listOfWords(keys) + suggestion(pair.key, keys));
      }
    }
    if (!over) fail(repeat.place, "repeat: needs 'over', what to repeat over");
    result.items = items(*over, scope);
    return result;
  }

  static std::string loopName(const YamlNode& node) {
    const std::string& name = scalarText(node, "a name");
    if (!isExpressionName(name)) fail(node.place, shownNode(node) + " is no name for expressions");
    return name;
  }

  // A list, the entries of a file, or a count.
  std::vector<YamlNode> items(const YamlNode& source, const Scope& scope) {
    YamlNode over = value(source, scope);
    if (over.isList()) return std::move(over.list);
    const std::string& text = scalarText(over, "a list, a file or a count");
    if (const auto n = parseInteger(text)) {
      if (*n < 0 || size_t(*n) > kMaxNodes)
        fail(source.place, "repeat: expecting a count from 0 to 1000000, found " + text);
      std::vector<YamlNode> numbers;
      for (size_t i = 0; i < size_t(*n); ++i) numbers.push_back(integerNode(i + 1, over));
      return numbers;
    }
    const YamlNode& file = read(over, source.place);
    if (!file.isList()) fail(source.place, "repeat: '" + text + "' has " + shownNode(file) + ", no list");
    return file.list;
  }

  // -- constants

  const YamlNode* constant(const std::string& name) {
    const auto ready = evaluated.find(name);
    if (ready != evaluated.end()) return &ready->second;
    const auto found = definitions.constants.find(name);
    if (found == definitions.constants.end()) return nullptr;
    const std::string what = "constant " + name;
    if (std::find(uses.begin(), uses.end(), what) != uses.end())
      fail(found->second.place, "constant " + name + " needs itself");
    if (broken.contains(name)) throw KnownFault();
    if (uses.size() >= 4 * kMaxUses) fail(found->second.place, "constants need each other too deep");
    uses.push_back(what);
    struct Leave {
      std::vector<std::string>& uses;
      ~Leave() { uses.pop_back(); }
    } leave{uses};
    broken.insert(name);  // until it has a value, so that what is wrong with it is reported once
    YamlNode node = value(found->second, constants);
    broken.erase(name);
    return &(evaluated[name] = std::move(node));
  }

  // -- bounds

  void count(const YamlNode& node) {
    nodes += 1 + node.text.size() / kBytesOfNode;
    if (nodes > kMaxNodes)
      throw TooLarge{messageAt(node.place, "the source expands to more than 1,000,000 values, which is too large")};
  }

  void countAll(const YamlNode& node) {
    count(node);
    for (const YamlNode& item : node.list) countAll(item);
    for (const YamlPair& pair : node.map) countAll(pair.value);
  }

  const Definitions& definitions;
  SourceFiles& files;
  std::vector<KitMessage>& errors;
  Scope constants;
  std::map<std::string, YamlNode> evaluated;  // constants
  std::set<std::string> broken;               // constants
  std::vector<std::string> uses;              // that are being evaluated
  const YamlNode* repeatedEntry = nullptr;
  int depth = 0;
  size_t nodes = 0;
};

}  // namespace

YamlNode instantiate(const YamlNode& node, const Definitions& definitions, SourceFiles& files,
                     std::vector<KitMessage>& errors) {
  return Instantiator(definitions, files, errors).run(node);
}
