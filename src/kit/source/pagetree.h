// A page as a tree, between its YAML source and its compiled bytes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/format/pagefile.h"
#include "kit/lines/codeplaces.h"
#include "kit/yaml/yamlnode.h"

struct PageNode;

struct PageValue {
  PageTag tag = PageTag::none;
  uint32_t number = 0;           // integer, boolean, colour
  std::string bytes;             // string, script
  std::vector<PageNode> object;  // object: one, or none for a null one
  std::vector<PageValue> table;  // table: strings or objects
};

struct PageEntry {
  std::string name;
  PageValue value;
};

// Where an object was written.
struct ObjectPlaces {
  struct Attribute {
    std::string name;
    YamlPlace place;  // of the key; the object's own for what a layout or links made
  };

  YamlPlace object;                   // where its source begins; nowhere for one that no source was read for
  std::vector<Attribute> attributes;  // those of the rectangle, too
};

// An object record.
struct PageNode {
  uint16_t x = 0, y = 0, width = 0, height = 0;
  std::vector<PageEntry> attributes;
  ObjectPlaces places{};
};

// An object file that goes beside the page.
struct ScriptFile {
  std::string name;    // as the page names it
  std::string source;  // the path of the file that it is made of
  std::string bytes;
  std::vector<BobCodeLines> lines{};
};

// A page that a script opens by a name that the script spells out: LoadPage("menu.kpg").
struct LoadedPage {
  std::string name;
  YamlPlace place;
  std::string what;  // which script does it: "onClick of start"
};

struct PageTree {
  uint32_t flags = 0;
  PageNode root;
  std::vector<ScriptFile> scriptFiles{};
  std::vector<std::string> sources{};  // all that was read, the page source first
  std::vector<LoadedPage> loadedPages{};
  std::vector<BobCodeLines> lines{};  // of the scripts in the page, where they were asked for
};
