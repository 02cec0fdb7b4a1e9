// What a page consists of: its widgets and where they lie on the screen, what they link to, how they look, what they
// read, and where all that was written.
//
// Rectangles are those of a page that has just opened in the top frame, before a picture or a script has changed any.
// Pages inside it are not followed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/source/pagewriter.h"

struct OutlineAttribute {
  std::string key, value;
};

// A widget, or a line of a text container.
struct OutlineWidget {
  std::string label;  // objectLabel's: its name, or its type and its number among its siblings
  std::string type;   // "box" for a plain one, "line" for a line
  std::string name;   // empty without one
  int32_t x = 0, y = 0, width = 0, height = 0;
  std::vector<OutlineAttribute> links;   // names of widgets
  std::vector<OutlineAttribute> styles;  // names of text styles
  std::vector<OutlineAttribute> files;   // what is shown, opened or loaded
  std::vector<std::string> hooks;        // that have scripts
  std::vector<OutlineWidget> children;
  YamlPlace place;  // without a line for a page that was not built from a source just now
};

struct OutlineStyle {
  std::string name, font;
  int32_t size;
  YamlPlace place;
};

struct PageOutline {
  int depth = 16;                    // bits
  std::vector<std::string> scripts;  // files
  std::vector<OutlineStyle> styles;
  OutlineWidget root;
  size_t widgets = 0;  // as far as the player makes any
};

// Throws KitError, for `path`, when it is no page.
PageOutline outlinePage(const std::string& path, std::vector<uint8_t> bytes, const PagePlaces& places = {});

std::string outlineText(const PageOutline& outline);
std::string outlineJson(const PageOutline& outline);
