// The walk over a tree that finds what its names mean: scopes are opened and closed as the compiler does it.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kit/language/bobsymbols.h"

class BobSymbolWalk {
 public:
  BobSymbolWalk(const BobTree& t, BobSymbols* s) : tree(t), symbols(*s) {}
  void run();

 private:
  using Kind = BobNodeKind;

  // symbolwalk.cpp: scopes and uses
  void visit(uint32_t node);
  void visitChildren(uint32_t node);
  void block(uint32_t node);
  void define(uint32_t node);
  void functionLiteral(uint32_t node, const std::string& thisObject);
  void function(uint32_t node, uint32_t parameters, uint32_t body, const std::string& thisObject);
  void assign(uint32_t node);
  void place(uint32_t node);
  void chain(uint32_t node, bool writesLast);
  void object(uint32_t node, const std::string& name);
  void openScope(uint32_t node, uint32_t begin, uint32_t end, const std::string& thisObject);
  void closeScope() { open.pop_back(); }
  void declare(uint32_t nameNode, BobSymbolKind kind, uint32_t visibleFrom);
  uint32_t addSymbol(std::string_view name, BobSymbolKind kind);
  uint32_t named(std::string_view name, BobSymbolKind kind);
  uint32_t resolve(std::string_view name);
  void use(uint32_t node, uint32_t symbol, BobUseKind kind);
  bool isMissing(uint32_t node) const { return tree.nodes[node].kind == Kind::kMissing; }
  uint32_t endOf(uint32_t body) const;

  // classwalk.cpp: objects that are classes, and functions
  void assigned(uint32_t placeNode, uint32_t value);
  std::string pathOf(uint32_t node) const;
  std::string ownObjectOf(uint32_t nameNode) const;
  void holds(uint32_t symbol, const std::string& object);
  BobClass& classNamed(const std::string& name, uint32_t offset);
  void addMember(const std::string& className, uint32_t nameNode, uint32_t value);
  void addFunction(const std::string& path, const std::string& name, uint32_t node, uint32_t nameNode);
  std::vector<std::string> parameterTexts(uint32_t function) const;

  const BobTree& tree;
  BobSymbols& symbols;
  struct Open {
    uint32_t scope;
    std::unordered_map<std::string_view, uint32_t> names;
  };
  std::vector<Open> open;
  std::unordered_map<std::string, uint32_t> globals, selectors, constants, classes;
  std::vector<bool> conflicts;  // by symbol: its assignments don't agree
};
