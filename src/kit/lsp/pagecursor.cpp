#include "kit/lsp/pagecursor.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::string_view kMark = "kpgCursorHere";

class CursorFinder {
 public:
  CursorFinder(const EditedText& t, size_t o) : offset(o) {
    std::string marked = t.text();
    marked.insert(offset, kMark);
    cursor.view = std::make_shared<const PageView>(std::make_shared<const EditedText>(std::move(marked)));
  }

  PageCursor find() {
    visit(cursor.view->top, nullptr);
    return std::move(cursor);
  }

 private:
  bool holds(size_t begin, size_t end) const { return begin <= offset && offset + kMark.size() <= end; }

  // `map` is the one around, for what it is a value of.
  bool visit(const LooseNode& node, const LooseNode* map) {
    if (!node.isMap() && !node.isList()) return holds(node.begin, node.end) && foundScalar(node, map);
    for (const LoosePair& pair : node.map) {
      if (holds(pair.begin, pair.end)) {
        foundKey(pair, node);
        return true;
      }
      if (pair.value.end <= offset) continue;
      cursor.path.push_back(pair.key);
      if (pair.value.isMap() || pair.value.isList() ? visit(pair.value, &node) : visitValue(pair, node)) return true;
      cursor.path.pop_back();
    }
    for (const LooseNode& item : node.list) {
      if (item.end <= offset) continue;
      if (visit(item, map)) {
        if (item.isScalar()) cursor.isEntry = true;
        return true;
      }
    }
    return false;
  }

  bool visitValue(const LoosePair& pair, const LooseNode& map) {
    if (!holds(pair.value.begin, pair.value.end)) return false;
    const SourceScript* script = cursor.view->scriptAt(offset);
    if (!script || script->pair != &pair) return foundScalar(pair.value, &map);
    cursor.kind = PageCursor::script;
    cursor.scriptText = pair.value.text;
    const size_t mark = cursor.scriptText.find(kMark);
    if (mark == std::string::npos) return true;
    cursor.scriptText.erase(mark, kMark.size());
    cursor.scriptOffset = mark;
    cursor.keyOfValue = pair.key;
    takeObject(map);
    return true;
  }

  bool foundScalar(const LooseNode& node, const LooseNode* map) {
    cursor.kind = PageCursor::value;
    cursor.isQuoted = node.style == YamlNode::Style::quoted;
    cursor.begin = node.begin + cursor.isQuoted;
    cursor.end = node.end - (cursor.isQuoted && node.isClosed) - kMark.size();
    if (!cursor.path.empty()) {
      cursor.keyOfValue = cursor.path.back();
      cursor.path.pop_back();
    }
    cursor.written = cursor.view->text->text().substr(cursor.begin, offset - cursor.begin);
    if (map) takeObject(*map);
    return true;
  }

  void foundKey(const LoosePair& pair, const LooseNode& map) {
    cursor.kind = PageCursor::key;
    cursor.begin = pair.begin;
    cursor.end = pair.end - kMark.size();
    cursor.hasColon = pair.hasColon;
    cursor.written = cursor.view->text->text().substr(cursor.begin, offset - cursor.begin);
    for (const LoosePair& other : map.map)
      if (&other != &pair) cursor.keys.push_back(other.key);
    takeObject(map);
  }

  void takeObject(const LooseNode& map) {
    if (const SourceObject* object = cursor.view->objectOf(map)) cursor.object = *object;
  }

  const size_t offset;
  PageCursor cursor;
};

}  // namespace

PageCursor pageCursorAt(const EditedText& text, size_t offset) { return CursorFinder(text, offset).find(); }
