// What an editor makes of a page source that somebody is writing: every part lies in the text, whatever that is.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "kit/lsp/pagecursor.h"
#include "kit/lsp/scriptview.h"

namespace {

void check(bool holds) {
  if (!holds) std::abort();
}

void checkNode(const LooseNode& node, size_t size) {
  check(node.begin <= node.end && node.end <= size);
  for (size_t i = 0; i < node.text.size(); ++i) {
    check(node.sourceOf(i) <= node.end);
    check(node.textOffsetOf(node.sourceOf(i)) <= node.text.size());
  }
  for (const LooseNode& item : node.list) checkNode(item, size);
  for (const LoosePair& pair : node.map) {
    check(pair.begin <= pair.end && pair.end <= size);
    checkNode(pair.value, size);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto text = std::make_shared<const EditedText>(std::string(data, data + size));
  const auto page = std::make_shared<const PageView>(text);
  checkNode(page->top, size);
  for (const NameMention& name : page->names) check(name.begin <= name.end && name.end <= size);
  for (const SourceScript& script : page->scripts) {
    const ScriptView view("page.yaml", page, script);
    for (const BobUse& use : view.symbols.uses) check(view.sourceEndOf(use.offset + use.length) <= size);
  }
  const size_t offset = size == 0 ? 0 : data[0] * size / 256;
  const PageCursor cursor = pageCursorAt(*text, offset);
  if (cursor.kind == PageCursor::key || cursor.kind == PageCursor::value)
    check(cursor.begin <= offset && offset <= cursor.end && cursor.end <= size);
  return 0;
}
