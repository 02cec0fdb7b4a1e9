// Text styles: what a page says of how a text looks, as plain records that widgets copy.
//
// A style's font stays as long as the engine, so a copy may outlive the page. A style whose font could not be loaded
// measures 0 and draws nothing.
#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "engine/format/pagefile.h"
#include "engine/text/fonts.h"

enum TextStyleFlags : uint32_t {
  kTextStyleBackground = 1,
  kTextStyleUnderline = 2,  // carried, never drawn
  kTextStyleAntialias = 4,
  kTextStyleGridfit = 8,
};

struct TextStyle {
  FontEntry* font = nullptr;
  uint32_t styleFlags = 0;
  uint32_t color = 0;          // as the screen's depth wants it
  int32_t horScale = 0x10000;  // 16.16
  int32_t letterExtra = 0;     // 16.16 pixels after each character but the space
  int32_t spaceExtra = 0;      // 16.16 pixels after each space
  uint16_t size = 24;          // pixels
  uint16_t encoding = 1;       // an hsGAttribute::TextEncoding: single bytes, UTF-8, or UTF-16, little-endian
  uint32_t bgColor = 0;

  bool operator==(const TextStyle&) const = default;
};

struct NamedStyle {
  std::string name = "default";
  TextStyle style;
};

// The styles of one page. Each stays where it is until the page goes.
class TextStyles {
 public:
  // Adds the styles of the table. False when memory runs out, with the styles up to there.
  bool read(const PageTable& table);

  const TextStyle* find(const char* name) const;  // the first of that name, or null
  void clear() { styles.clear(); }

  auto begin() const { return styles.begin(); }
  auto end() const { return styles.end(); }

 private:
  std::list<NamedStyle> styles;
};
