// Page files, read in place.
//
// A page is a tree of objects with typed attributes. Nothing is parsed into structures: widgets keep references into
// the bytes and look attributes up by name when they need them, so a wrong type shows only when it is used, and each
// time. Numbers are big-endian, offsets count from the start of the file. What points outside the bytes is absent.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "engine/base/mortal.h"
#include "engine/format/attributes.h"

inline constexpr std::string_view kPageMagic = "KPGF";  // how a page file begins

struct PageData : Mortal {
  explicit PageData(std::vector<uint8_t> file);

  std::vector<uint8_t> bytes;
  size_t lastZero;  // offset after the last zero byte, 0 when there is none: strings that start before it end inside
};

// 1 if the header passes; otherwise the log says why.
int pageCheck(const uint8_t* bytes, size_t size);

uint32_t pageFlags(const PageData& page);  // only for pages that passed
inline constexpr uint32_t kPageIs8Bit = 1;

// A record of the page, or none at all (page null), which has a zero rectangle and no attributes.
struct PageObject {
  const PageData* page = nullptr;
  uint32_t offset = 0;

  bool operator==(const PageObject&) const = default;
  explicit operator bool() const { return page != nullptr; }

  // The rectangle's words; 0 where the file's end cuts the record.
  uint16_t x() const { return word(0); }
  uint16_t y() const { return word(2); }
  uint16_t width() const { return word(4); }
  uint16_t height() const { return word(6); }
  uint32_t attributeCount() const;  // of those that lie inside the file
  uint16_t word(uint32_t at) const;
};

PageObject pageRoot(const PageData& page);

struct PageTable {
  const PageData* page = nullptr;
  uint32_t offset = 0;

  uint32_t count() const;                    // of the entries that lie inside the file
  PageObject object(uint32_t index) const;   // none when it lies outside
  const char* string(uint32_t index) const;  // null when it lies outside
};

using PageScript = std::span<const uint8_t>;

enum class PageTag : uint8_t { none, integer, boolean, color, string, script, object, table };

struct PageAttribute {
  const PageData* page;
  uint8_t tag;
  const char* name;  // null when it lies outside
  uint32_t value;
};

PageAttribute pageAttribute(const PageObject& record, uint32_t index);

// The first attribute of that name.
std::optional<PageAttribute> attrFind(const PageObject& record, AttributeName name);

// Readers: 1 and the value, or 0 after logging the type. A string passes for an integer or a boolean, an integer for a
// colour, but a colour not for an integer.
int attrInt(const PageAttribute& attribute, int32_t* out);
int attrColor(const PageAttribute& attribute, uint32_t* out);
int attrBool(const PageAttribute& attribute, bool* out);
int attrString(const PageAttribute& attribute, const char** out);
int attrObject(const PageAttribute& attribute, PageObject* out);  // none for offset 0
int attrTable(const PageAttribute& attribute, PageTable* out);
int attrScript(const PageAttribute& attribute, PageScript* out);

// By name: 0 for an absent attribute, without a message.
int attrInt(const PageObject& record, IntegerAttribute name, int32_t* out);
int attrColor(const PageObject& record, ColorAttribute name, uint32_t* out);
int attrBool(const PageObject& record, BooleanAttribute name, bool* out);
int attrString(const PageObject& record, StringAttribute name, const char** out);
const char* attrPlainString(const PageObject& record, StringAttribute name);  // null, without a message, for all others
int attrTable(const PageObject& record, TableAttribute name, PageTable* out);
int attrScript(const PageObject& record, ScriptAttribute name, PageScript* out);
