#include "kit/language/formatbob.h"

#include <algorithm>
#include <vector>

#include "kit/errors.h"
#include "kit/language/formatgaps.h"
#include "kit/language/formatlayout.h"

namespace {

int lineOf(std::string_view source, size_t offset) {
  return 1 + int(std::count(source.begin(), source.begin() + std::ptrdiff_t(offset), '\n'));
}

// That of the first line that ends outside a string.
std::string_view lineEndOf(const BobTree& tree) {
  size_t at = 0;
  for (const BobSourceToken& token : tree.tokens.all) {
    if (token.kind != BobTokenKind::kString && token.kind != BobTokenKind::kEnd) continue;
    const size_t line = tree.source.substr(0, token.begin).find('\n', at);
    if (line != std::string_view::npos) return line > 0 && tree.source[line - 1] == '\r' ? "\r\n" : "\n";
    at = token.end;
  }
  return "\n";
}

}  // namespace

std::string formatBob(std::string_view source, const std::string& file, const BobFormatOptions& options) {
  const BobTree tree = parseBob(source);
  std::vector<KitMessage> errors;
  for (const BobSyntaxError& error : tree.errors) errors.push_back({file, lineOf(source, error.offset), error.text});
  const size_t end = tree.tokens.all.back().begin;
  if (errors.empty() && end < source.size())
    errors.push_back({file, lineOf(source, end), "a byte ends the source here, and what follows is never read"});
  if (!errors.empty()) throw KitError(errors);
  const size_t columns = options.columns - std::min(options.columns, options.indent);
  return BobLayout(tree, bobGapsOf(tree), columns, lineEndOf(tree)).run();
}
