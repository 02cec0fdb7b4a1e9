#include "kit/source/pagecut.h"

#include <set>
#include <string_view>
#include <utility>

#include "engine/format/pagefile.h"
#include "gfx/foundation/hsbytes.h"

namespace {

constexpr uint32_t kOffsetMask = 0xFFFFFF;
constexpr uint64_t kRecordSize = 12, kAttributeSize = 8;

// Follows every reference once.
class Walk {
 public:
  explicit Walk(std::vector<uint8_t> bytes) : page(std::move(bytes)) {}

  bool leavesTheFile() {
    visit(word(12));
    while (!missing && !waiting.empty()) {
      const uint32_t next = waiting.back();
      waiting.pop_back();
      object(next);
    }
    return missing;
  }

 private:
  uint32_t word(uint64_t at) const { return hsBig32(page.bytes.data() + at); }

  bool need(uint64_t at, uint64_t size) {
    const bool inside = at + size <= page.bytes.size();
    missing = missing || !inside;
    return inside;
  }

  void needString(uint32_t at) { missing = missing || at >= page.lastZero; }

  void visit(uint32_t object) {
    if (met.insert(object).second) waiting.push_back(object);
  }

  void object(uint32_t at) {
    if (!need(at, kRecordSize)) return;
    const uint64_t count = word(uint64_t{at} + 8);
    if (!need(at + kRecordSize, count * kAttributeSize)) return;
    for (uint32_t i = 0; i < count && !missing; ++i) attribute(pageAttribute({&page, at}, i));
  }

  void attribute(const PageAttribute& a) {
    if (!a.name) {
      missing = true;
      return;
    }
    switch (PageTag(a.tag)) {
      case PageTag::string: return needString(a.value);
      case PageTag::script:
        if (need(a.value, 4)) need(uint64_t{a.value} + 4, word(a.value));
        return;
      case PageTag::object:
        if (a.value != 0) visit(a.value);
        return;
      case PageTag::table: return table(a.value, std::string_view(a.name) == "scripts");
      default: return;
    }
  }

  // Only a list of scripts is known to hold texts. What another list holds may be read as a text or an object.
  void table(uint32_t at, bool texts) {
    if (!need(at, 4)) return;
    const uint64_t count = word(at) & kOffsetMask;
    if (!need(uint64_t{at} + 4, count * 4)) return;
    for (uint64_t i = 0; i < count && !missing; ++i) {
      const uint32_t entry = word(at + 4 + i * 4);
      if (texts)
        needString(entry);
      else if (need(entry, 1) && isRecord(entry))
        visit(entry);
    }
  }

  // The rectangle and the count of attributes; a text that happens to lie there has a wild count.
  bool isRecord(uint32_t at) const {
    const uint64_t end = uint64_t{at} + kRecordSize;
    return end <= page.bytes.size() && word(uint64_t{at} + 8) <= (page.bytes.size() - end) / kAttributeSize;
  }

  const PageData page;
  bool missing = false;
  std::set<uint32_t> met;
  std::vector<uint32_t> waiting;
};

}  // namespace

bool pageIsCutShort(std::vector<uint8_t> bytes) {
  return pageCheck(bytes.data(), bytes.size()) && Walk(std::move(bytes)).leavesTheFile();
}
