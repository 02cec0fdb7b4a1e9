#include "kit/source/pagedump.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <set>

#include "engine/format/pagefile.h"
#include "gfx/foundation/hsbytes.h"
#include "kit/errors.h"
#include "kit/expand/directions.h"
#include "kit/expand/expression.h"
#include "kit/files.h"
#include "kit/source/base64.h"
#include "kit/source/schema.h"
#include "kit/source/scripts.h"

namespace {

constexpr int kMaxDepth = 300;  // a little more than the engine follows

// Megabytes of text for a page of so many bytes. A page stays far below, unless many of its attributes lead to the same
// objects and texts, which a source repeats each time.
size_t mostMegabytes(size_t pageBytes) { return std::min(1 + (pageBytes + 1023) / 1024, kLargestFile >> 20); }

// A line of a comment: what could end it or hurt a reader is shown as its code.
std::string commented(std::string_view text) {
  std::string out = "# ";
  for (const char c : text) {
    if (uint8_t(c) >= 0x20 && uint8_t(c) < 0x7F) {
      out += c;
      continue;
    }
    char code[8];
    std::snprintf(code, sizeof code, "\\x%02x", unsigned(uint8_t(c)));
    out += code;
  }
  return out;
}

std::string quoted(const char* text) {
  std::string out = "\"";
  for (const char* c = text; *c; ++c) {
    if (*c == '"' || *c == '\\') {
      out += '\\';
      out += *c;
    } else if (uint8_t(*c) >= 0x20 && uint8_t(*c) != 0x7F) {
      out += *c;
    } else {
      char code[8];
      std::snprintf(code, sizeof code, "\\x%02x", unsigned(uint8_t(*c)));
      out += code;
    }
  }
  return out + '"';
}

std::string quotedText(const char* text) { return quoted(escapeExpressions(text).c_str()); }

bool isPlainWord(const char* text) {
  if (!std::strchr("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ", *text) || !*text) return false;
  if (std::strspn(text, "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.-") != std::strlen(text))
    return false;
  for (const char* word :
       {"true", "false", "yes", "no", "on", "off", "null", "y", "n", "Null", "NULL", "True", "TRUE", "False", "FALSE"})
    if (std::strcmp(text, word) == 0) return false;
  return true;
}

std::string keyText(const char* name) { return isPlainWord(name) ? name : quoted(name); }

class Dumper {
 public:
  Dumper(const std::string& f, const PageData& p) : file(f), page(p), most(mostMegabytes(p.bytes.size())) {}

  std::string run() {
    const uint32_t flags = pageFlags(page);
    out = "flags: " + (flags == 0 ? "16bit" : flags == kPageIs8Bit ? "8bit" : std::to_string(flags)) + "\npage:\n";
    object(pageRoot(page), ObjectKind::root, 2);
    return out;
  }

 private:
  void line(int indent, const std::string& text) {
    out.append(size_t(indent), ' ').append(text).append("\n");
    if (out.size() > most << 20)
      throw KitError(
          file, "its parts share so much that its source would be larger than " + std::to_string(most) + " megabytes");
  }

  // The pairs of one object, each on a line at `indent`.
  void object(const PageObject& record, ObjectKind kind, int indent) {
    const size_t start = out.size();
    const bool isWidget = kind == ObjectKind::root || kind == ObjectKind::widget;
    const std::pair<const char*, uint16_t> header[] = {
        {"x", record.x()}, {"y", record.y()}, {"width", record.width()}, {"height", record.height()}};
    for (const auto& [name, value] : header)
      if (isWidget || value) line(indent, std::string(name) + ": " + std::to_string(value));

    // Objects can lead to one another without end, so the file's size bounds how many are printed.
    if (++objects > page.bytes.size() || indent > 4 * kMaxDepth) {
      line(indent, "# and so on");
    } else {
      const std::string type = typeOf(record);
      const bool hasType = attrFind(record, "type").has_value();
      for (uint32_t i = 0; i < record.attributeCount(); ++i) {
        const PageAttribute a = pageAttribute(record, i);
        if (a.name) {
          attribute(a,
                    {attributeForm(kind, type, a.name),
                     isRefused(a, kind, type, hasType) || lacksStyles(record, type, a.name)},
                    indent);
        } else {
          line(indent, "# an attribute whose name lies outside the file");
        }
      }
    }
    if (firstPair(start, indent) == std::string::npos) line(indent, "{}");
  }

  // An object as an entry of a list: its first pair follows the dash.
  void listedObject(const PageObject& record, ObjectKind kind, int indent) {
    const size_t start = out.size();
    object(record, kind, indent + 2);
    out[firstPair(start, indent + 2) + size_t(indent)] = '-';
  }

  // Where the first line from `start` on begins that is no comment; npos if there is none.
  size_t firstPair(size_t start, int indent) const {
    while (start < out.size() && out[start + size_t(indent)] == '#') start = out.find('\n', start) + 1;
    return start < out.size() ? start : std::string::npos;
  }

  static std::string typeOf(const PageObject& record) {
    const char* type = "";
    const auto a = attrFind(record, "type");
    if (a && a->tag == uint8_t(PageTag::string)) attrString(*a, &type);
    return type;
  }

  // How build reads an attribute without a tag.
  struct Reading {
    AttributeForm form;
    bool isRefused;  // it does not take the value that the page has
  };

  static bool isRefused(const PageAttribute& a, ObjectKind kind, std::string_view type, bool hasType) {
    const char* text;
    if (isDirectionName(a.name) || (kind == ObjectKind::style && std::strcmp(a.name, "style") == 0)) return true;
    if (isChildrenOfPlainBox(kind, type, a.name)) return true;
    if (!hasType && isMisspeltType(kind, a.name)) return true;
    if (PageTag(a.tag) == PageTag::integer && !whyNumberIsRefused(kind, type, a.name, int32_t(a.value)).empty())
      return true;
    return PageTag(a.tag) == PageTag::string && attrString(a, &text) && !isAttributeWord(kind, type, a.name, text);
  }

  static bool lacksStyles(const PageObject& record, std::string_view type, std::string_view name) {
    if (type != "select" || name != "showAll") return false;
    return !attrFind(record, "textStyle") || !attrFind(record, "highlightTextStyle");
  }

  void attribute(const PageAttribute& a, Reading reading, int indent) {
    const std::string key = keyText(a.name) + ":";
    switch (PageTag(a.tag)) {
      case PageTag::integer:
        return line(indent, key + tagUnless(reading, AttributeKind::integer, true, "!int") + integer(a));
      case PageTag::boolean: return line(indent, key + boolean(a, reading));
      case PageTag::color:
        return line(indent, key + tagUnless(reading, AttributeKind::color, false, "!color") + hex(a.value));
      case PageTag::string: return string(a, reading, indent, key);
      case PageTag::script: return script(a, indent, key);
      case PageTag::object: return nested(a, indent, key);
      case PageTag::table: return table(a, reading, indent, key);
      default: line(indent, "# " + key + " unknown type " + std::to_string(a.tag));
    }
  }

  // A tag where the builder would not choose that type by itself.
  static std::string tagUnless(Reading reading, AttributeKind wanted, bool byLooks, const char* tag) {
    const bool chosen = !reading.isRefused && (reading.form == wanted || (byLooks && !reading.form));
    return chosen ? " " : std::string(" ") + tag + " ";
  }

  static std::string integer(const PageAttribute& a) { return std::to_string(int32_t(a.value)); }

  static std::string boolean(const PageAttribute& a, Reading reading) {
    const std::string tag = tagUnless(reading, AttributeKind::boolean, true, "!bool");
    if (a.value > 1) return " !bool " + std::to_string(a.value);
    return tag + (a.value ? "true" : "false");
  }

  static std::string hex(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, value < 256 ? "%u" : "0x%08X", unsigned(value));
    return text;
  }

  void string(const PageAttribute& a, Reading reading, int indent, const std::string& key) {
    const char* text;
    if (!attrString(a, &text)) return line(indent, "# " + key + " a string outside the file");
    line(indent, key + tagUnless(reading, AttributeKind::string, true, "!string") +
                     (isPlainWord(text) ? text : quotedText(text)));
  }

  void script(const PageAttribute& a, int indent, const std::string& key) {
    PageScript bytes;
    if (!attrScript(a, &bytes)) return line(indent, "# " + key + " a script outside the file");
    const std::string_view records(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    list(records, indent);
    const std::string data = base64Encode(records);
    line(indent, key + " !scriptdata \"" + data + "\"");
  }

  // Once for all attributes that lead to the same bytes.
  void list(std::string_view records, int indent) {
    if (!listed.insert(records.data()).second) return;
    if (!lister) lister = std::make_unique<ScriptLister>();
    const std::string listing = lister->list(records);
    for (size_t at = 0; at < listing.size();) {
      const size_t end = std::min(listing.find('\n', at), listing.size());
      line(indent, commented(std::string_view(listing).substr(at, end - at)));
      at = end + 1;
    }
  }

  void nested(const PageAttribute& a, int indent, const std::string& key) {
    PageObject record;
    if (!attrObject(a, &record)) return line(indent, "# " + key + " an object outside the file");
    line(indent, key + " !object");
    if (record) object(record, ObjectKind::other, indent + 2);
  }

  void table(const PageAttribute& a, Reading reading, int indent, const std::string& key) {
    const AttributeForm form = reading.form;
    PageTable table;
    if (!attrTable(a, &table)) return line(indent, "# " + key + " a table outside the file");
    const ObjectKind kind = tableObjectKind(form);
    const uint32_t count = table.count();
    bool expected = !reading.isRefused && (kind != ObjectKind::other || form == AttributeKind::files || !form);
    for (uint32_t i = 0; i < count; ++i) {
      const bool asText = isText(table, i, kind);
      const bool asIs = form == AttributeKind::files
                            ? asText && !std::string_view(table.string(i)).ends_with(".bob")  // which build compiles
                            : !asText || kind == ObjectKind::other;
      if (!asIs) expected = false;
    }
    line(indent, key + (expected ? "" : " !table") + (count ? "" : " []"));
    for (uint32_t i = 0; i < count; ++i) {
      if (isText(table, i, kind)) {
        line(indent + 2, "- " + quotedText(table.string(i)));
      } else if (const PageObject record = table.object(i)) {
        listedObject(record, kind, indent + 2);
      } else {
        line(indent + 2, "# an entry outside the file");
      }
    }
  }

  // Whether an entry is printed as a text. Where the engine reads objects, that is what can only be a text.
  bool isText(const PageTable& table, uint32_t i, ObjectKind kind) const {
    const char* text = table.string(i);
    if (!text || looksLikeObject(table.object(i))) return false;
    return kind == ObjectKind::other || std::all_of(text, text + std::strlen(text), [](uint8_t c) { return c >= ' '; });
  }

  // Nothing in the file says what a table of unknown use leads to. What reads as a record with good attributes is one:
  // no two neighbouring texts do.
  bool looksLikeObject(const PageObject& record) const {
    if (!record || record.offset + 12 > page.bytes.size()) return false;
    const uint32_t count = hsBig32(page.bytes.data() + record.offset + 8);
    if (count != record.attributeCount()) return false;
    for (uint32_t i = 0; i < count; ++i) {
      const PageAttribute a = pageAttribute(record, i);
      if (!a.name || !*a.name || a.tag < uint8_t(PageTag::integer) || a.tag > uint8_t(PageTag::table)) return false;
    }
    return true;
  }

  const std::string& file;
  const PageData& page;
  const size_t most;  // megabytes
  std::string out;
  size_t objects = 0;
  std::set<const char*> listed;          // scripts
  std::unique_ptr<ScriptLister> lister;  // once there is one to list
};

}  // namespace

std::string dumpPage(const std::string& path, std::vector<uint8_t> bytes) {
  if (!pageCheck(bytes.data(), bytes.size())) throw KitError(path, "not a page file");
  const PageData page(std::move(bytes));
  return Dumper(path, page).run();
}
