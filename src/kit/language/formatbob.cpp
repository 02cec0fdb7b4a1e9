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

}  // namespace

std::string formatBob(std::string_view source, const std::string& file, const BobFormatOptions& options) {
  const BobTree tree = parseBob(source);
  std::vector<KitMessage> errors;
  for (const BobSyntaxError& error : tree.errors) errors.push_back({file, lineOf(source, error.offset), error.text});
  const size_t end = tree.tokens.all.back().begin;
  if (errors.empty() && end < source.size())
    errors.push_back({file, lineOf(source, end), "a byte ends the source here, and what follows is never read"});
  if (!errors.empty()) throw KitError(errors);
  const size_t firstEnd = source.find('\n');
  const bool carriageReturns = firstEnd != std::string_view::npos && firstEnd > 0 && source[firstEnd - 1] == '\r';
  const size_t columns = options.columns - std::min(options.columns, options.indent);
  return BobLayout(tree, bobGapsOf(tree), columns, carriageReturns ? "\r\n" : "\n").run();
}
