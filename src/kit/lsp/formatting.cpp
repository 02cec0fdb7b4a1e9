// Scripts in the one style of the language: whole files, and those that stand after a bar in a page source.
#include "kit/lsp/formatting.h"

#include <algorithm>
#include <utility>

#include "kit/errors.h"
#include "kit/language/formatbob.h"
#include "kit/lsp/features.h"
#include "kit/lsp/lspjson.h"

using nlohmann::json;

namespace {

std::string indented(const std::string& text, size_t columns) {
  std::string result;
  for (size_t begin = 0; begin < text.size();) {
    const size_t end = std::min(text.find('\n', begin), text.size());
    if (end > begin) result += std::string(columns, ' ') + text.substr(begin, end - begin);
    if (end < text.size()) result += '\n';
    begin = end + 1;
  }
  return result;
}

// Only after a bar are a script's lines those of the source.
std::optional<SourceEdit> formatInPage(const ScriptView& script) {
  const LooseNode& node = *script.node;
  if (node.style != YamlNode::Style::block || script.hasExpressions || node.segments.empty()) return {};
  const EditedText& text = *script.file;
  const size_t first = text.lineBegin(size_t(text.positionOf(node.begin).line) + 1);
  const size_t from = node.sourceOf(script.text.find_first_not_of('\n'));
  const size_t columns = from - text.lineBegin(size_t(text.positionOf(from).line));
  std::string formatted = formatBob(script.text, script.path, {.indent = columns});
  while (formatted.ends_with('\n')) formatted.pop_back();
  if (formatted.empty() || formatted.starts_with(' ')) return {};
  const std::string written = indented(formatted, columns);
  if (text.text().substr(first, node.end - first) == written) return {};
  return SourceEdit{first, node.end, written};
}

}  // namespace

std::optional<SourceEdit> formatEdit(const ScriptView& script) {
  if (script.node) return formatInPage(script);
  std::string formatted = formatBob(script.text, script.path);
  if (formatted == script.text) return {};
  return SourceEdit{0, script.text.size(), std::move(formatted)};
}

std::string formatPageScripts(const std::string& path, const std::string& source) {
  const auto text = std::make_shared<const EditedText>(source);
  const auto page = std::make_shared<const PageView>(text);
  std::vector<KitMessage> errors;
  std::vector<SourceEdit> edits;
  for (const SourceScript& script : page->scripts) {
    const ScriptView view(path, page, script);
    if (view.hasExpressions) continue;
    for (const BobSyntaxError& error : view.tree.errors)
      errors.push_back({path, text->positionOf(view.sourceOf(error.offset)).line + 1, view.what + ": " + error.text});
    if (!view.tree.errors.empty()) continue;
    if (std::optional<SourceEdit> edit = formatEdit(view)) edits.push_back(std::move(*edit));
  }
  if (!errors.empty()) throw KitError(std::move(errors));
  std::sort(edits.begin(), edits.end(), [](const SourceEdit& a, const SourceEdit& b) { return a.begin > b.begin; });
  std::string formatted = source;
  for (const SourceEdit& edit : edits) formatted.replace(edit.begin, edit.end - edit.begin, edit.text);
  return formatted;
}

json formatScripts(SourceViews& views, const std::string& path) {
  json edits = json::array();
  for (const auto& script : views.scripts(path)) {
    if (!script->tree.errors.empty()) continue;  // which is said where the errors are
    if (const std::optional<SourceEdit> edit = formatEdit(*script))
      edits.push_back({{"range", rangeJson(script->file->rangeOf(edit->begin, edit->end))}, {"newText", edit->text}});
  }
  return edits;
}
