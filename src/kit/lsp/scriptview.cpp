#include "kit/lsp/scriptview.h"

#include <algorithm>
#include <utility>

namespace {

// An expression becomes a name of the same length.
std::string withoutExpressions(std::string text) {
  for (size_t at = text.find("$("); at != std::string::npos; at = text.find("$(", at)) {
    size_t end = at + 1;
    for (int depth = 0; end < text.size(); ++end) {
      depth += text[end] == '(' ? 1 : text[end] == ')' ? -1 : 0;
      if (depth == 0 || text[end] == '\n') break;
    }
    end = std::min(end + 1, text.size());
    std::fill(text.begin() + long(at), text.begin() + long(end), '_');
    at = end;
  }
  return text;
}

}  // namespace

ScriptCode::ScriptCode(std::string t) : text(std::move(t)), tree(parseBob(text)), symbols(symbolsOf(tree)) {}

std::shared_ptr<const ScriptCode> ScriptView::newCode(std::string text) {
  return std::make_shared<const ScriptCode>(std::move(text));
}

ScriptView::ScriptView(std::string p, std::shared_ptr<const EditedText> f, const CodeOf& codeOf)
    : path(std::move(p)),
      file(std::move(f)),
      node(nullptr),
      code(codeOf(file->text())),
      hasExpressions(false),
      text(code->text),
      tree(code->tree),
      symbols(code->symbols) {}

ScriptView::ScriptView(std::string p, std::shared_ptr<const PageView> of, const SourceScript& script,
                       const CodeOf& codeOf)
    : path(std::move(p)),
      file(of->text),
      page(std::move(of)),
      node(&script.pair->value),
      what(script.pair->key + " of " + script.of),
      code(codeOf(withoutExpressions(node->text))),
      hasExpressions(code->text != node->text),
      text(code->text),
      tree(code->tree),
      symbols(code->symbols) {}

ScriptView::ScriptView(std::string t)
    : node(nullptr),
      code(newCode(withoutExpressions(std::move(t)))),
      hasExpressions(false),
      text(code->text),
      tree(code->tree),
      symbols(code->symbols) {}

std::string ScriptView::ownerOf(const BobUse& use) const {
  const uint32_t member = tree.nodes[use.node].parent;
  if (member == kBobNoNode || tree.nodes[member].kind != BobNodeKind::kMember) return "";
  const uint32_t chain = tree.nodes[member].parent;
  if (chain == kBobNoNode || tree.nodes[chain].kind != BobNodeKind::kChain) return "";
  const auto links = tree.children(chain);
  const auto at = std::find(links.begin(), links.end(), member);
  if (at == links.begin() || at == links.end()) return "";
  const uint32_t before = *std::prev(at);
  if (tree.nodes[before].kind == BobNodeKind::kName) return std::string(tree.text(before));
  if (tree.nodes[before].kind != BobNodeKind::kMember) return "";
  const auto inner = tree.children(before);
  return inner.empty() || tree.nodes[inner[0]].kind != BobNodeKind::kSelector ? "" : std::string(tree.text(inner[0]));
}

const BobFunctionInfo* ScriptView::functionNamed(std::string_view name) const {
  for (const BobFunctionInfo& function : symbols.functions)
    if (function.name == name && function.ofObject.empty()) return &function;
  return nullptr;
}
