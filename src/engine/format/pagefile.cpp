#include "engine/format/pagefile.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "gfx/foundation/hsascii.h"
#include "gfx/foundation/hsbytes.h"
#include "host/host.h"

namespace {

constexpr uint32_t kHeaderSize = 16;
constexpr uint32_t kVersion = 0x0200;  // major in the upper byte
constexpr uint32_t kRecordSize = 12;   // without attributes
constexpr uint32_t kAttributeSize = 8;
constexpr uint32_t kOffsetMask = 0xFFFFFF;

bool liesInside(const PageData& page, uint64_t offset, uint64_t size) { return offset + size <= page.bytes.size(); }

const char* stringAt(const PageData& page, uint32_t offset) {
  return offset < page.lastZero ? reinterpret_cast<const char*>(page.bytes.data() + offset) : nullptr;
}

// How many of `count` items of `size` bytes from `offset` on lie inside.
uint32_t countInside(const PageData& page, uint64_t offset, uint32_t count, uint32_t size) {
  if (offset >= page.bytes.size()) return 0;
  return uint32_t(std::min<uint64_t>(count, (page.bytes.size() - offset) / size));
}

PageObject objectAt(const PageData* page, uint32_t offset) {
  return offset < page->bytes.size() ? PageObject{page, offset} : PageObject{};
}

// Logs that the attribute has another type than the reader expects. Always 0.
int wrongType(const PageAttribute& attribute, const char* expectation) {
  hostLog("%s, got type %02x\n", expectation, attribute.tag);
  return 0;
}

template <class T>
int byName(const PageObject& record, AttributeName name, T* out, int (*read)(const PageAttribute&, T*)) {
  const auto attribute = attrFind(record, name);
  return attribute ? read(*attribute, out) : 0;
}

}  // namespace

PageData::PageData(std::vector<uint8_t> file) : bytes(std::move(file)) {
  const auto zero = std::find(bytes.rbegin(), bytes.rend(), 0);
  lastZero = size_t(bytes.rend() - zero);
}

int pageCheck(const uint8_t* bytes, size_t size) {
  if (size < kHeaderSize || std::memcmp(bytes, kPageMagic.data(), kPageMagic.size()) != 0) {
    hostLog("Not a page file\n");
    return 0;
  }
  const uint32_t version = hsBig32(bytes + 4);
  if (version != kVersion) {
    hostLog("Outdated page file: expected version %d.%02d, got version %d.%02d\n", 2, 0, int(version >> 8),
            int(version & 255));
    return 0;
  }
  return 1;
}

uint32_t pageFlags(const PageData& page) { return hsBig32(page.bytes.data() + 8); }

PageObject pageRoot(const PageData& page) { return objectAt(&page, hsBig32(page.bytes.data() + 12)); }

uint16_t PageObject::word(uint32_t at) const {
  if (!page || !liesInside(*page, offset, kRecordSize)) return 0;
  return hsBig16(page->bytes.data() + offset + at);
}

uint32_t PageObject::attributeCount() const {
  if (!page || !liesInside(*page, offset, kRecordSize)) return 0;
  return countInside(*page, uint64_t(offset) + kRecordSize, hsBig32(page->bytes.data() + offset + 8), kAttributeSize);
}

uint32_t PageTable::count() const {
  return countInside(*page, uint64_t(offset) + 4, hsBig32(page->bytes.data() + offset) & kOffsetMask, 4);
}

PageObject PageTable::object(uint32_t index) const {
  return objectAt(page, hsBig32(page->bytes.data() + offset + 4 + size_t(index) * 4));
}

const char* PageTable::string(uint32_t index) const {
  return stringAt(*page, hsBig32(page->bytes.data() + offset + 4 + size_t(index) * 4));
}

PageAttribute pageAttribute(const PageObject& record, uint32_t index) {
  const uint8_t* p = record.page->bytes.data() + record.offset + kRecordSize + size_t(index) * kAttributeSize;
  return {record.page, p[0], stringAt(*record.page, hsBig32(p) & kOffsetMask), hsBig32(p + 4)};
}

std::optional<PageAttribute> attrFind(const PageObject& record, AttributeName name) {
  const uint32_t count = record.attributeCount();
  for (uint32_t i = 0; i < count; ++i) {
    const PageAttribute attribute = pageAttribute(record, i);
    if (attribute.name && std::strcmp(attribute.name, name) == 0) return attribute;
  }
  return std::nullopt;
}

int attrInt(const PageAttribute& a, int32_t* out) {
  switch (PageTag(a.tag)) {
    case PageTag::integer:
    case PageTag::boolean: *out = int32_t(a.value); return 1;
    case PageTag::string: {
      const char* text = stringAt(*a.page, a.value);
      if (!text) return 0;
      *out = hsAsciiToInt(text);
      return 1;
    }
    default: return wrongType(a, "Expecting an integer");
  }
}

int attrColor(const PageAttribute& a, uint32_t* out) {
  if (PageTag(a.tag) != PageTag::integer && PageTag(a.tag) != PageTag::color) return wrongType(a, "Expecting a color");
  *out = a.value;
  return 1;
}

int attrBool(const PageAttribute& a, bool* out) {
  switch (PageTag(a.tag)) {
    case PageTag::integer:
    case PageTag::boolean: *out = a.value != 0; return 1;
    case PageTag::string: {
      const char* text = stringAt(*a.page, a.value);
      if (!text) return 0;
      const std::string_view word = text;
      *out = word == "true" || word == "yes" || word == "1";
      return 1;
    }
    default: return wrongType(a, "Expecting boolean");
  }
}

int attrString(const PageAttribute& a, const char** out) {
  if (PageTag(a.tag) != PageTag::string) return wrongType(a, "Expecting string");
  const char* text = stringAt(*a.page, a.value);
  if (!text) return 0;
  *out = text;
  return 1;
}

int attrObject(const PageAttribute& a, PageObject* out) {
  if (PageTag(a.tag) != PageTag::object) return wrongType(a, "Eexpecting object");
  *out = a.value ? objectAt(a.page, a.value) : PageObject{};
  return a.value == 0 || *out ? 1 : 0;
}

int attrTable(const PageAttribute& a, PageTable* out) {
  if (PageTag(a.tag) != PageTag::table) return wrongType(a, "Expecting table");
  if (!liesInside(*a.page, a.value, 4)) return 0;
  *out = {a.page, a.value};
  return 1;
}

int attrScript(const PageAttribute& a, PageScript* out) {
  if (PageTag(a.tag) != PageTag::script) return wrongType(a, "Expecting script");
  if (!liesInside(*a.page, a.value, 4)) return 0;
  const uint32_t length = hsBig32(a.page->bytes.data() + a.value);
  if (!liesInside(*a.page, uint64_t(a.value) + 4, length)) return 0;
  *out = PageScript(a.page->bytes.data() + a.value + 4, length);
  return 1;
}

int attrInt(const PageObject& r, IntegerAttribute name, int32_t* out) { return byName(r, name, out, attrInt); }
int attrColor(const PageObject& r, ColorAttribute name, uint32_t* out) { return byName(r, name, out, attrColor); }
int attrBool(const PageObject& r, BooleanAttribute name, bool* out) { return byName(r, name, out, attrBool); }
int attrString(const PageObject& r, StringAttribute name, const char** out) { return byName(r, name, out, attrString); }
const char* attrPlainString(const PageObject& record, StringAttribute name) {
  const auto attribute = attrFind(record, name);
  return attribute && PageTag(attribute->tag) == PageTag::string ? stringAt(*record.page, attribute->value) : nullptr;
}

int attrTable(const PageObject& r, TableAttribute name, PageTable* out) { return byName(r, name, out, attrTable); }
int attrScript(const PageObject& r, ScriptAttribute name, PageScript* out) { return byName(r, name, out, attrScript); }
