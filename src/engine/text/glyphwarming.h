// Glyphs rendered before their use, a few at a time, so that a page's first text doesn't stutter.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <string_view>

#include "engine/text/textstyle.h"

struct Timer;

// The requests of one engine.
class GlyphWarming {
 public:
  bool start();  // its timer; false without memory
  void stop();   // forgets what is asked for
  bool request(const TextStyle& style, std::string_view text);
  void warmSome();  // the timer's firing

 private:
  struct Request {
    TextStyle style;
    std::string text;
    size_t done = 0;  // bytes
  };

  std::list<Request> requests;  // the head is under way
  Timer* timer = nullptr;       // destroyed by stop, as its memory may still be in use
};

GlyphWarming& currentGlyphWarming();  // of the engine that is current on this thread

// Asks for the characters, UTF-8 as far as they decode, in a copy of the style: the latest request comes first. False
// for a text that is longer than a page may have.
bool glyphWarmingRequest(const TextStyle& style, std::string_view text);

// Renders each UTF-8 character off screen, so that its glyph is in the cache.
void textWarm(const TextStyle& style, const char* text, uint32_t bytes);
