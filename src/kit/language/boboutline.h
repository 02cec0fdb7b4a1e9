// What an editor shows beside and around a Bob source: its outline, what folds, and the kinds of its tokens.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/language/bobsymbols.h"
#include "kit/language/bobtree.h"

struct BobOutlineItem {
  enum Kind { kFunction, kMethod, kObject, kProperty, kVariable };
  Kind kind;
  std::string name;             // "show", "B.who"
  std::string detail;           // of functions, the parameters: "(a, b = 1)"
  uint32_t begin, end;          // of the whole
  uint32_t nameBegin, nameEnd;  // inside it
  std::vector<BobOutlineItem> children;
};
// Functions, methods and objects, nested as they are written; globals at the place of their first assignment at the
// top.
std::vector<BobOutlineItem> outlineOf(const BobTree& tree);

struct BobFold {
  enum Kind { kCode, kComment } kind;
  uint32_t begin, end;  // from the line of `begin` to that of `end`, which are different ones
};
// Blocks, literals, lists of arguments, comments, and line comments in a row; by ascending begin.
std::vector<BobFold> foldsOf(const BobTree& tree);

enum class BobSemantic : uint8_t {
  kComment,
  kKeyword,
  kString,
  kNumber,
  kOperator,
  kFunction,  // a global that is defined as a function here, or is called
  kMethod,    // a selector that is called or defined as a method
  kProperty,
  kParameter,
  kVariable,  // a local
  kGlobal,
  kSymbol,    // \name, the backslash included
  kConstant,  // true, false, nil, this, _next
};

struct BobSemanticToken {
  uint32_t offset, length;
  BobSemantic kind;
  bool isDefinition;
};
// By ascending offset, without overlaps. Punctuation has none.
std::vector<BobSemanticToken> semanticTokensOf(const BobTree& tree, const BobSymbols& symbols);
