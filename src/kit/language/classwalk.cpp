// Objects that are given methods and properties by name.
#include <algorithm>

#include "kit/language/knownobject.h"
#include "kit/language/symbolwalk.h"

// The place and the value have been visited. What is nil at first may become anything.
void BobSymbolWalk::assigned(uint32_t placeNode, uint32_t value) {
  const Kind kind = tree.nodes[value].kind;
  const bool isMade = kind == Kind::kObject || kind == Kind::kNew;
  const std::string made = bobKindOf(tree, value);
  std::string path = pathOf(placeNode);
  if (path.empty() && kind == Kind::kObject && tree.nodes[placeNode].kind == Kind::kName) path = ownObjectOf(placeNode);
  if (!path.empty() && isMade) {
    BobClass& object = classNamed(path, tree.nodes[placeNode].begin);
    if (object.parent.empty()) object.parent = made;
    if (object.parent != made) object.parent = "Object";
  }
  if (tree.nodes[placeNode].kind == Kind::kName) {
    const uint32_t symbol = resolve(tree.text(placeNode));
    if (kind == Kind::kFunction && !path.empty()) addFunction({}, path, value, placeNode);
    const bool isPath = kind == Kind::kName || kind == Kind::kChain;
    if (kind != Kind::kNil) holds(symbol, isPath ? pathOf(value) : isMade && !path.empty() ? path : made);
    return;
  }
  const size_t point = path.rfind('.');
  if (point == std::string::npos) return;
  const uint32_t selector = tree.children(tree.children(placeNode).back())[0];
  addMember(path.substr(0, point), selector, value);
  if (kind == Kind::kFunction) addFunction(path.substr(0, point), path.substr(point + 1), value, selector);
}

// "a.b.c" of a chain of names that begins with a global, or with `this` in a method, which stands for its object.
// Empty for anything else.
std::string BobSymbolWalk::pathOf(uint32_t node) const {
  const bool isChain = tree.nodes[node].kind == Kind::kChain;
  const uint32_t first = isChain ? tree.children(node)[0] : node;
  if (tree.nodes[first].kind != Kind::kName) return {};
  const std::string_view name = tree.text(first);
  const bool isVariable =
      name == "true" || name == "false" ||
      std::any_of(open.begin(), open.end(), [&](const Open& scope) { return scope.names.contains(name); });
  if (isVariable && (name != "this" || !isChain)) return {};
  std::string path = isVariable ? symbols.scopes[open.back().scope].thisObject : std::string(name);
  if (path.empty() || !isChain) return path;
  for (const uint32_t link : tree.children(node).subspan(1)) {
    if (tree.nodes[link].kind != Kind::kMember) return {};
    const uint32_t selector = tree.children(link)[0];
    if (tree.nodes[selector].kind != Kind::kSelector) return {};
    path += "." + std::string(tree.text(selector));
  }
  return path;
}

// What a class is called that only a variable has: no script can say such a name.
std::string BobSymbolWalk::ownObjectOf(uint32_t nameNode) const {
  return std::string(tree.text(nameNode)) + "@" + std::to_string(tree.nodes[nameNode].begin);
}

void BobSymbolWalk::holds(uint32_t symbol, const std::string& object) {
  std::string& known = symbols.symbols[symbol].object;
  if (conflicts[symbol] || known == object) return;
  conflicts[symbol] = object.empty() || !known.empty();
  known = conflicts[symbol] ? std::string() : object;
}

BobClass& BobSymbolWalk::classNamed(const std::string& name, uint32_t offset) {
  const auto [found, isNew] = classes.emplace(name, uint32_t(symbols.classes.size()));
  if (isNew) symbols.classes.push_back({name, {}, offset, {}});
  return symbols.classes[found->second];
}

void BobSymbolWalk::addMember(const std::string& className, uint32_t nameNode, uint32_t value) {
  const Kind kind = tree.nodes[value].kind;
  const bool isMethod = kind == Kind::kDefine || kind == Kind::kFunction;
  const std::string name(tree.text(nameNode));
  std::vector<BobClass::Member>& members = classNamed(className, tree.nodes[nameNode].begin).members;
  const auto found =
      std::find_if(members.begin(), members.end(), [&](const BobClass::Member& m) { return m.name == name; });
  BobClass::Member member{name, tree.nodes[nameNode].begin, isMethod,
                          isMethod ? parameterTexts(value) : std::vector<std::string>()};
  if (found == members.end()) return members.push_back(std::move(member));
  if (isMethod && !found->isMethod) *found = std::move(member);
}

void BobSymbolWalk::addFunction(const std::string& path, const std::string& name, uint32_t node, uint32_t nameNode) {
  symbols.functions.push_back({name, path, node, tree.nodes[nameNode].begin, parameterTexts(node)});
}

std::vector<std::string> BobSymbolWalk::parameterTexts(uint32_t function) const {
  const std::span<const uint32_t> list = tree.children(function);
  std::vector<std::string> texts;
  for (const uint32_t parameter : tree.children(list[list.size() - 2])) texts.emplace_back(tree.text(parameter));
  return texts;
}
