// Scripts in the one style of the language: whole files, and those that stand after a bar in a page source.
#include <algorithm>
#include <utility>

#include "kit/errors.h"
#include "kit/language/formatbob.h"
#include "kit/lsp/features.h"
#include "kit/lsp/lspjson.h"

using nlohmann::json;

namespace {

json editJson(const EditedText& text, size_t begin, size_t end, const std::string& newText) {
  return {{"range", rangeJson(text.rangeOf(begin, end))}, {"newText", newText}};
}

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

void formatFile(const ScriptView& script, json& edits) {
  const std::string formatted = formatBob(script.text, script.path);
  if (formatted != script.text) edits.push_back(editJson(*script.file, 0, script.text.size(), formatted));
}

// Only after a bar are a script's lines those of the source.
void formatInPage(const ScriptView& script, json& edits) {
  const LooseNode& node = *script.node;
  if (node.style != YamlNode::Style::block || script.hasExpressions || node.segments.empty()) return;
  const EditedText& text = *script.file;
  const size_t first = text.lineBegin(size_t(text.positionOf(node.begin).line) + 1);
  const size_t from = node.sourceOf(script.text.find_first_not_of('\n'));
  const size_t columns = from - text.lineBegin(size_t(text.positionOf(from).line));
  std::string formatted = formatBob(script.text, script.path, {.indent = columns});
  while (formatted.ends_with('\n')) formatted.pop_back();
  if (formatted.empty() || formatted.starts_with(' ')) return;
  const std::string written = indented(formatted, columns);
  if (text.text().substr(first, node.end - first) != written) edits.push_back(editJson(text, first, node.end, written));
}

}  // namespace

json formatScripts(SourceViews& views, const std::string& path) {
  json edits = json::array();
  for (const auto& script : views.scripts(path)) {
    if (!script->tree.errors.empty()) continue;  // which is said where the errors are
    script->node ? formatInPage(*script, edits) : formatFile(*script, edits);
  }
  return edits;
}
