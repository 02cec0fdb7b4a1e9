// What an editor has to know of a page source, or of a file that page sources include: its objects, who has a name and
// who uses it, its scripts, files and colours, each with its bytes. It is made of any text, also a broken one.
//
// A template's parameters are known inside of it alone, and so its name comes in front of theirs: "entry.label".
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kit/lsp/editedtext.h"
#include "kit/source/schema.h"
#include "kit/yaml/looseyaml.h"

enum class NameKind { widget, style, madeBy, constant, parameter };  // madeBy: a template

struct NameMention {
  NameKind kind;
  std::string name;
  size_t begin, end;  // bytes of the source, quotes included
  bool isDefinition;
};

struct SourceObject {
  ObjectKind kind;
  std::string type;  // its own, or that of its template as far as this file has it; empty for a plain box
  std::string label;
  const LooseNode* node;
  bool takesMore;      // a template or a file brings in attributes
  std::string inside;  // the template that it is part of
};

struct FileMention {
  std::string name;
  std::string key;
  size_t begin, end;
};

struct SourceScript {
  const LoosePair* pair;
  std::string of;  // the label of the object
};

struct ColorMention {
  size_t begin, end;  // of #RRGGBB, without quotes
  uint32_t rgb;       // 0x00RRGGBB
};

class PageView {
 public:
  explicit PageView(std::shared_ptr<const EditedText> text);
  PageView(const PageView&) = delete;
  PageView& operator=(const PageView&) = delete;

  const std::shared_ptr<const EditedText> text;
  const LooseNode top;
  std::vector<SourceObject> objects;  // in the order of the source, what lies in one after it
  std::vector<NameMention> names;
  std::vector<FileMention> files;
  std::vector<SourceScript> scripts;
  std::vector<ColorMention> colors;

  const SourceObject* objectOf(const LooseNode& map) const;                 // null for a map that is no object
  const SourceObject* named(NameKind kind, const std::string& name) const;  // the first widget or style of that name
  const NameMention* nameAt(size_t offset) const;
  const SourceScript* scriptAt(size_t offset) const;
  const LooseNode* templateNamed(std::string_view name) const;
  std::vector<std::string> included() const;     // names of files
  std::vector<std::string> scriptFiles() const;  // likewise, .bob

 private:
  void readTop();
  void readTemplates(const LooseNode& all);
  void readObject(const LooseNode& node, ObjectKind kind, size_t number, const std::string& inside);
  void readPair(const LoosePair& pair, const SourceObject& object);
  const AttributeRow* rowOf(const SourceObject& object, const std::string& key);
  void readTable(const LooseNode& list, ObjectKind kind, const std::string& inside);
  void readColor(const LooseNode& scalar);
  void readOther(const LooseNode& node, const std::string& inside);
  void readExpressions(const LooseNode& scalar, const std::string& inside);
  void mention(NameKind kind, const LooseNode& scalar, bool isDefinition = false);
  void define(NameKind kind, const LoosePair& pair, const std::string& name);
  std::string typeOf(const LooseNode& node, int depth = 0) const;

  std::unordered_map<const LooseNode*, size_t> objectsByNode;
  std::map<std::pair<NameKind, std::string>, size_t, std::less<>> objectsByName;
  std::set<std::string> parameters;
  std::unordered_map<std::string, const AttributeRow*> rows;  // that have been looked up
};
