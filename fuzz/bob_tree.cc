// What editors make of a script that somebody is writing: a tree and names that lie in the text, whatever that is, and
// a style that is settled at once.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "kit/errors.h"
#include "kit/language/bobsymbols.h"
#include "kit/language/formatbob.h"

namespace {

void check(bool holds) {
  if (!holds) std::abort();
}

void checkTree(const BobTree& tree) {
  for (uint32_t node = 0; node < tree.nodes.size(); ++node) {
    const BobNode& of = tree.nodes[node];
    check(of.begin <= of.end && of.end <= tree.source.size());
    check((of.parent == kBobNoNode) == (node == tree.root()));
    for (const uint32_t child : tree.children(node)) check(child < node && tree.nodes[child].parent == node);
  }
  for (const BobSyntaxError& error : tree.errors) check(error.offset + error.length <= tree.source.size());
}

void checkStyle(std::string_view text) try {
  const std::string formatted = formatBob(text, "fuzz.bob");
  check(formatBob(formatted, "fuzz.bob") == formatted);
} catch (const KitError&) {  // it has errors
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const BobTree tree = parseBob(text);
  checkTree(tree);
  const BobSymbols symbols = symbolsOf(tree);
  for (const BobUse& use : symbols.uses) {
    check(use.offset + use.length <= size);
    check(symbols.useAt(use.offset) != nullptr);
    const BobUse* definition = symbols.definitionOf(use.symbol);
    check(!definition || definition->symbol == use.symbol);
  }
  const size_t offset = size == 0 ? 0 : data[0] * size / 256;
  const BobCursor cursor = cursorAt(tree, symbols, offset);
  check(cursor.begin <= offset && offset <= cursor.end && cursor.end <= size);
  BobCallAt call;
  if (callAt(tree, symbols, offset, &call)) check(call.nameOffset < size);
  checkStyle(text);
  return 0;
}
