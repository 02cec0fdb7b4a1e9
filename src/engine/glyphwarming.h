// Glyphs rendered ahead of their use, a few at a time, so that a page's first text doesn't stutter.
#pragma once

#include <string_view>

struct TextStyle;

int glyphWarmingStart();  // its timer, at the engine's start; 0 without memory
void glyphWarmingStop();  // forgets what is asked for

// Asks for the characters, UTF-8 as far as they decode, in a copy of the style: the latest request comes first. False
// for a text that is longer than a page may have.
bool glyphWarmingRequest(const TextStyle& style, std::string_view text);
