#include "kit/language/bobsymbols.h"

#include <algorithm>

const BobUse* BobSymbols::useAt(size_t offset) const {
  auto after = std::upper_bound(uses.begin(), uses.end(), offset,
                                [](size_t place, const BobUse& use) { return place < use.offset; });
  if (after == uses.begin()) return nullptr;
  const BobUse& use = *(after - 1);
  return offset <= use.offset + use.length ? &use : nullptr;
}

const BobUse* BobSymbols::definitionOf(uint32_t symbol) const {
  const BobUse* firstWrite = nullptr;
  for (const uint32_t number : symbols[symbol].uses) {
    const BobUse& use = uses[number];
    if (use.isDefinition()) return &use;
    if (use.kind == BobUseKind::kWrite && !firstWrite) firstWrite = &use;
  }
  return firstWrite;
}

// Scopes come before those in them.
uint32_t BobSymbols::scopeAt(size_t offset) const {
  uint32_t found = 0;
  for (uint32_t i = 1; i < scopes.size() && scopes[i].begin < offset; ++i)
    if (offset < scopes[i].end) found = i;
  return found;
}

std::vector<uint32_t> BobSymbols::variablesAt(size_t offset) const {
  std::vector<uint32_t> found;
  for (uint32_t scope = scopeAt(offset); scope != kBobNoNode; scope = scopes[scope].parent)
    for (const uint32_t symbol : scopes[scope].symbols) {
      const bool hidden = std::any_of(found.begin(), found.end(),
                                      [&](uint32_t other) { return symbols[other].name == symbols[symbol].name; });
      if (!hidden && symbols[symbol].visibleFrom <= offset) found.push_back(symbol);
    }
  return found;
}

const BobSymbol* BobSymbols::find(BobSymbolKind kind, std::string_view name) const {
  const auto found = std::find_if(symbols.begin(), symbols.end(),
                                  [&](const BobSymbol& symbol) { return symbol.kind == kind && symbol.name == name; });
  return found == symbols.end() ? nullptr : &*found;
}

const BobClass* BobSymbols::findClass(std::string_view name) const {
  const auto found = std::find_if(classes.begin(), classes.end(), [&](const BobClass& c) { return c.name == name; });
  return found == classes.end() ? nullptr : &*found;
}
