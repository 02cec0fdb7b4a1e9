#include "kit/language/symbolwalk.h"

#include <algorithm>

BobSymbols symbolsOf(const BobTree& tree) {
  BobSymbols symbols;
  BobSymbolWalk(tree, &symbols).run();
  return symbols;
}

void BobSymbolWalk::run() {
  openScope(tree.root(), 0, uint32_t(tree.source.size()) + 1, {});
  visitChildren(tree.root());
  std::stable_sort(symbols.uses.begin(), symbols.uses.end(),
                   [](const BobUse& a, const BobUse& b) { return a.offset < b.offset; });
  for (uint32_t i = 0; i < symbols.uses.size(); ++i) symbols.symbols[symbols.uses[i].symbol].uses.push_back(i);
}

void BobSymbolWalk::visitChildren(uint32_t node) {
  for (const uint32_t child : tree.children(node)) visit(child);
}

void BobSymbolWalk::visit(uint32_t node) {
  switch (tree.nodes[node].kind) {
    case Kind::kBlock: return block(node);
    case Kind::kDefine: return define(node);
    case Kind::kFunction: return functionLiteral(node, {});
    case Kind::kAssign: return assign(node);
    case Kind::kChain: return chain(node, false);
    case Kind::kObject: return object(node, {});
    case Kind::kCatch: return visit(tree.children(node)[1]);  // its name is none of a variable
    case Kind::kName: return use(node, resolve(tree.text(node)), BobUseKind::kRead);
    case Kind::kSelector: return use(node, named(tree.text(node), BobSymbolKind::kSelector), BobUseKind::kRead);
    case Kind::kSymbol: {
      const BobSourceToken& name = tree.tokens.all[tree.nodes[node].endToken - 1];
      if (name.kind == BobTokenKind::kIdentifier)
        use(node, named(tree.text(name), BobSymbolKind::kSelector), BobUseKind::kMention);
      return;
    }
    case Kind::kPrefix: {
      const BobTokenKind sign = tree.tokens.all[tree.nodes[node].firstToken].kind;
      const uint32_t operand = tree.children(node)[0];
      const bool steps = sign == BobTokenKind::kIncrement || sign == BobTokenKind::kDecrement;
      return steps ? place(operand) : visit(operand);
    }
    default: return visitChildren(node);
  }
}

// -- scopes

void BobSymbolWalk::openScope(uint32_t node, uint32_t begin, uint32_t end, const std::string& thisObject) {
  const uint32_t parent = open.empty() ? kBobNoNode : open.back().scope;
  open.push_back({uint32_t(symbols.scopes.size()), {}});
  symbols.scopes.push_back({parent, node, begin, end, {}, thisObject});
}

// Behind the body; of one that isn't closed, where the next token is.
uint32_t BobSymbolWalk::endOf(uint32_t body) const {
  const BobNode& node = tree.nodes[body];
  const bool closed =
      node.endToken > node.firstToken + 1 && tree.tokens.all[node.endToken - 1].kind == BobTokenKind::kCloseBrace;
  if (closed) return node.end;
  const BobSourceToken& next = tree.tokens.all[node.endToken];
  return next.kind == BobTokenKind::kEnd ? uint32_t(tree.source.size()) + 1 : next.begin;
}

void BobSymbolWalk::declare(uint32_t nameNode, BobSymbolKind kind, uint32_t visibleFrom) {
  if (isMissing(nameNode)) return;
  const std::string_view name = tree.text(nameNode);
  const auto known = open.back().names.find(name);
  // Of two variables of a name in one scope, the first is the one that is found.
  if (known != open.back().names.end()) return use(nameNode, known->second, BobUseKind::kDeclare);
  const uint32_t symbol = addSymbol(name, kind);
  symbols.symbols[symbol].visibleFrom = visibleFrom;
  open.back().names.emplace(name, symbol);
  symbols.scopes[open.back().scope].symbols.push_back(symbol);
  use(nameNode, symbol, BobUseKind::kDeclare);
}

uint32_t BobSymbolWalk::addSymbol(std::string_view name, BobSymbolKind kind) {
  const bool hasScope =
      kind == BobSymbolKind::kArgument || kind == BobSymbolKind::kLocal || kind == BobSymbolKind::kImplicit;
  symbols.symbols.push_back({std::string(name), kind, hasScope ? open.back().scope : 0, {}, {}, 0});
  conflicts.push_back(false);
  return uint32_t(symbols.symbols.size()) - 1;
}

// What has no scope.
uint32_t BobSymbolWalk::named(std::string_view name, BobSymbolKind kind) {
  auto& known = kind == BobSymbolKind::kSelector ? selectors : kind == BobSymbolKind::kConstant ? constants : globals;
  const auto found = known.find(std::string(name));
  if (found != known.end()) return found->second;
  const uint32_t symbol = addSymbol(name, kind);
  known.emplace(name, symbol);
  return symbol;
}

uint32_t BobSymbolWalk::resolve(std::string_view name) {
  if (name == "true" || name == "false") return named(name, BobSymbolKind::kConstant);
  for (auto scope = open.rbegin(); scope != open.rend(); ++scope) {
    const auto found = scope->names.find(name);
    if (found != scope->names.end()) return found->second;
  }
  return named(name, BobSymbolKind::kGlobal);
}

void BobSymbolWalk::use(uint32_t node, uint32_t symbol, BobUseKind kind) {
  const BobSourceToken& token = tree.tokens.all[tree.nodes[node].endToken - 1];
  symbols.uses.push_back({token.begin, token.end - token.begin, symbol, kind, node});
}

void BobSymbolWalk::block(uint32_t node) {
  const std::span<const uint32_t> list = tree.children(node);
  const bool hasScope = !list.empty() && tree.nodes[list[0]].kind == Kind::kLocals;
  if (hasScope) openScope(node, tree.nodes[node].begin, endOf(node), symbols.scopes[open.back().scope].thisObject);
  for (const uint32_t child : list) {
    if (tree.nodes[child].kind != Kind::kLocals) {
      visit(child);
      continue;
    }
    for (const uint32_t variable : tree.children(child)) {
      const std::span<const uint32_t> parts = tree.children(variable);
      if (parts.size() > 1 && tree.nodes[parts[1]].kind == Kind::kObject && !isMissing(parts[0]))
        object(parts[1], ownObjectOf(parts[0]));
      else if (parts.size() > 1)
        visit(parts[1]);
      declare(parts[0], BobSymbolKind::kLocal, tree.nodes[variable].end);
      if (parts.size() > 1 && !isMissing(parts[0])) assigned(parts[0], parts[1]);
    }
  }
  if (hasScope) closeScope();
}

// -- functions

void BobSymbolWalk::define(uint32_t node) {
  const std::span<const uint32_t> list = tree.children(node);
  const std::span<const uint32_t> path = list.first(list.size() - 2);
  const uint32_t last = path.back();
  std::string objectPath;
  for (const uint32_t part : path.first(path.size() - 1)) {
    visit(part);
    objectPath += (objectPath.empty() ? "" : ".") + std::string(tree.text(part));
  }
  if (!isMissing(last)) {
    const BobSymbolKind kind = path.size() == 1 ? BobSymbolKind::kGlobal : BobSymbolKind::kSelector;
    use(last, named(tree.text(last), kind), BobUseKind::kDefine);
    addFunction(objectPath, std::string(tree.text(last)), node, last);
    if (path.size() > 1) addMember(objectPath, last, node);
  }
  function(node, list[list.size() - 2], list.back(), objectPath);
}

void BobSymbolWalk::functionLiteral(uint32_t node, const std::string& thisObject) {
  const std::span<const uint32_t> list = tree.children(node);
  if (list.size() == 3 && tree.nodes[list[0]].kind == Kind::kName) {
    use(list[0], named(tree.text(list[0]), BobSymbolKind::kGlobal), BobUseKind::kDefine);
    addFunction({}, std::string(tree.text(list[0])), node, list[0]);
  }
  function(node, list[list.size() - 2], list.back(), thisObject);
}

void BobSymbolWalk::function(uint32_t node, uint32_t parameters, uint32_t body, const std::string& thisObject) {
  openScope(node, tree.nodes[parameters].begin, endOf(body), thisObject);
  for (const char* name : {"this", "_next"}) {
    const uint32_t symbol = addSymbol(name, BobSymbolKind::kImplicit);
    open.back().names.emplace(name, symbol);
    symbols.scopes[open.back().scope].symbols.push_back(symbol);
  }
  for (const uint32_t parameter : tree.children(parameters)) {
    const std::span<const uint32_t> parts = tree.children(parameter);
    if (parts.size() > 1) visit(parts[1]);
    declare(parts[0], BobSymbolKind::kArgument, tree.nodes[parameter].end);
  }
  visit(body);
  closeScope();
}

// -- places

void BobSymbolWalk::assign(uint32_t node) {
  const uint32_t target = tree.children(node)[0], value = tree.children(node)[1];
  place(target);
  // A function or an object that is given a name belongs to it.
  const std::string path = pathOf(target);
  const Kind kind = tree.nodes[value].kind;
  const size_t point = path.rfind('.');
  if (kind == Kind::kFunction)
    functionLiteral(value, point == std::string::npos ? std::string() : path.substr(0, point));
  else if (kind == Kind::kObject)
    object(value, path.empty() && tree.nodes[target].kind == Kind::kName ? ownObjectOf(target) : path);
  else
    visit(value);
  assigned(target, value);
}

// What is assigned to.
void BobSymbolWalk::place(uint32_t node) {
  if (tree.nodes[node].kind == Kind::kName) return use(node, resolve(tree.text(node)), BobUseKind::kWrite);
  if (tree.nodes[node].kind == Kind::kChain) return chain(node, true);
  visit(node);
}

// The last name of a chain that is assigned to or stepped is written.
void BobSymbolWalk::chain(uint32_t node, bool writesLast) {
  const std::span<const uint32_t> list = tree.children(node);
  for (size_t i = 0; i < list.size(); ++i) {
    const bool stepped = i + 1 < list.size() && tree.nodes[list[i + 1]].kind == Kind::kStep;
    const bool writes = stepped || (writesLast && i + 1 == list.size());
    const BobNode& link = tree.nodes[list[i]];
    const uint32_t inner = link.kind == Kind::kMember ? tree.children(list[i])[0] : list[i];
    if (writes && tree.nodes[inner].kind == Kind::kSelector)
      use(inner, named(tree.text(inner), BobSymbolKind::kSelector), BobUseKind::kWrite);
    else if (writes && link.kind == Kind::kName)
      place(list[i]);
    else
      visit(list[i]);
  }
}

// `name` is the path of what it is assigned to; empty if there is none.
void BobSymbolWalk::object(uint32_t node, const std::string& name) {
  for (const uint32_t child : tree.children(node)) {
    if (tree.nodes[child].kind != Kind::kPair) {
      visit(child);
      continue;
    }
    const uint32_t key = tree.children(child)[0], value = tree.children(child)[1];
    const Kind kind = tree.nodes[value].kind;
    if (!isMissing(key)) {
      const std::string text(tree.text(key));
      use(key, named(text, BobSymbolKind::kSelector), BobUseKind::kDefine);
      if (!name.empty()) addMember(name, key, value);
      if (kind == Kind::kFunction) addFunction(name, text, value, key);
    }
    if (kind == Kind::kFunction)
      functionLiteral(value, name);
    else if (kind == Kind::kObject)
      object(value, name.empty() || isMissing(key) ? std::string() : name + "." + std::string(tree.text(key)));
    else
      visit(value);
  }
}
