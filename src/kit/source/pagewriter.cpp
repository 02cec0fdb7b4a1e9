#include "kit/source/pagewriter.h"

#include <map>

namespace {

constexpr uint32_t kVersion = 0x0200;
constexpr size_t kMaxNameOffset = 0xFFFFFF;

class PageWriter {
 public:
  explicit PageWriter(PagePlaces* p) : places(p) {}

  std::vector<uint8_t> write(const PageTree& page) {
    for (char c : kPageMagic) bytes.push_back(uint8_t(c));
    put32(kVersion);
    put32(page.flags);
    const size_t rootLink = reserve(4);
    putNames(page.root);
    align();
    patch(rootLink, node(page.root));
    putStrings();
    return std::move(bytes);
  }

 private:
  void put16(uint32_t v) {
    bytes.push_back(uint8_t(v >> 8));
    bytes.push_back(uint8_t(v));
  }
  void put32(uint32_t v) {
    put16(v >> 16);
    put16(v & 0xFFFF);
  }
  size_t reserve(size_t size) {
    bytes.resize(bytes.size() + size);
    return bytes.size() - size;
  }
  void patch(size_t at, uint32_t v) {
    for (int i = 0; i < 4; ++i) bytes[at + size_t(i)] = uint8_t(v >> (24 - 8 * i));
  }
  void align() { bytes.resize((bytes.size() + 3) / 4 * 4); }
  void putText(const std::string& text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
    bytes.push_back(0);
  }

  void putNames(const PageNode& node) {
    for (const PageEntry& entry : node.attributes) {
      if (names.emplace(entry.name, bytes.size()).second) {
        if (bytes.size() > kMaxNameOffset) throw std::length_error("too many attribute names");
        putText(entry.name);
      }
      putNames(entry.value);
    }
  }
  void putNames(const PageValue& value) {
    for (const PageNode& node : value.object) putNames(node);
    for (const PageValue& item : value.table) putNames(item);
  }

  // The record with its attributes, then what they lead to. Returns its offset.
  uint32_t node(const PageNode& node) {
    const uint32_t start = uint32_t(bytes.size());
    if (places) places->emplace(start, node.places);
    for (uint16_t word : {node.x, node.y, node.width, node.height}) put16(word);
    put32(uint32_t(node.attributes.size()));
    const size_t entries = reserve(8 * node.attributes.size());
    for (size_t i = 0; i < node.attributes.size(); ++i) {
      const PageEntry& entry = node.attributes[i];
      patch(entries + 8 * i, uint32_t(entry.value.tag) << 24 | uint32_t(names.at(entry.name)));
      value(entry.value, entries + 8 * i + 4);
    }
    return start;
  }

  // Writes what a value leads to, and the word that leads there into `link`.
  void value(const PageValue& v, size_t link) {
    switch (v.tag) {
      case PageTag::string: strings.push_back({link, v.bytes}); break;
      case PageTag::script: patch(link, script(v.bytes)); break;
      case PageTag::object: patch(link, v.object.empty() ? 0 : node(v.object.front())); break;
      case PageTag::table: patch(link, table(v.table)); break;
      default: patch(link, v.number);
    }
  }

  uint32_t table(const std::vector<PageValue>& items) {
    const uint32_t start = uint32_t(bytes.size());
    put32(uint32_t(items.size()));
    const size_t links = reserve(4 * items.size());
    for (size_t i = 0; i < items.size(); ++i) value(items[i], links + 4 * i);
    return start;
  }

  uint32_t script(const std::string& code) {
    const uint32_t start = uint32_t(bytes.size());
    put32(uint32_t(code.size()));
    bytes.insert(bytes.end(), code.begin(), code.end());
    align();
    return start;
  }

  void putStrings() {
    std::map<std::string, uint32_t> placed;
    for (const auto& [link, text] : strings) {
      const auto [where, isNew] = placed.emplace(text, uint32_t(bytes.size()));
      if (isNew) putText(text);
      patch(link, where->second);
    }
  }

  struct PendingString {
    size_t link;
    std::string text;
  };

  PagePlaces* places;
  std::vector<uint8_t> bytes;
  std::map<std::string, size_t> names;
  std::vector<PendingString> strings;
};

}  // namespace

std::vector<uint8_t> writePage(const PageTree& page, PagePlaces* places) { return PageWriter(places).write(page); }
