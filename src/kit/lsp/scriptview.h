// A script as an editor sees it: a file, or an attribute of a page source, with its tree, its names, and the bytes of
// the file where all that was written.
//
// Expressions of the page source, "$(...)", are names to the tree: what they become only the build knows.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "kit/language/bobsymbols.h"
#include "kit/language/bobtree.h"
#include "kit/lsp/pageview.h"

// What a script says, wherever it lies; of many scripts in one page most stay as they are from one edit to the next.
struct ScriptCode {
  explicit ScriptCode(std::string text);
  ScriptCode(const ScriptCode&) = delete;
  ScriptCode& operator=(const ScriptCode&) = delete;

  const std::string text;
  const BobTree tree;
  const BobSymbols symbols;
};

struct ScriptView {
  // How views get the code of a text, which may be known already.
  using CodeOf = std::function<std::shared_ptr<const ScriptCode>(std::string text)>;
  static std::shared_ptr<const ScriptCode> newCode(std::string text);

  ScriptView(std::string path, std::shared_ptr<const EditedText> file, const CodeOf& codeOf = newCode);
  ScriptView(std::string path, std::shared_ptr<const PageView> page, const SourceScript& script,
             const CodeOf& codeOf = newCode);
  // Of a text that is being completed, and lies nowhere.
  explicit ScriptView(std::string text);
  ScriptView(const ScriptView&) = delete;
  ScriptView& operator=(const ScriptView&) = delete;

  const std::string path;
  const std::shared_ptr<const EditedText> file;
  const std::shared_ptr<const PageView> page;  // null for a file
  const LooseNode* const node;                 // likewise
  const std::string what;                      // "onClick of go"; empty for a file
  const std::shared_ptr<const ScriptCode> code;
  const bool hasExpressions;
  const std::string& text;
  const BobTree& tree;
  const BobSymbols& symbols;

  size_t sourceOf(size_t offset) const { return node ? node->sourceOf(offset) : offset; }
  // Of what ends there.
  size_t sourceEndOf(size_t offset) const { return node && offset > 0 ? node->sourceOf(offset - 1) + 1 : offset; }
  size_t offsetOf(size_t source) const { return node ? node->textOffsetOf(source) : source; }
  bool holds(size_t source) const { return !node || (node->begin <= source && source <= node->end); }

  // What a name is a property of: "widgets" for widgets.go; empty for any other name, and for what is computed.
  std::string ownerOf(const BobUse& use) const;
  const BobFunctionInfo* functionNamed(std::string_view name) const;  // a global one
};
