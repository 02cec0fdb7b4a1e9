// A tree of Bob source for editors and tools, made from any text at all.
//
// The compiler makes no tree and stops at the first error; this parser goes on behind an error and keeps what it has
// understood. It accepts what the compiler accepts, and where the compiler refuses a source, the first error has the
// compiler's words. What only the space for code, literals or values limits is left to the compiler.
//
// The surprising rule: sequences are flat. `a + b - c` is one kBinary with three operands, `f(1).x[2]` one kChain of a
// name and three links, so the depth of a tree is bounded (about 600 levels of nesting, as in the compiler).
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kit/language/boblexer.h"

// With the children of each; [x] may be left out, all others are always there, as kMissing if need be. Words,
// punctuation and comments are tokens only.
enum class BobNodeKind : uint8_t {
  kSource,    // statements
  kMissing,   // where an expression, a name or a literal should be; empty
  kEmpty,     // ;
  kBlock,     // locals, then statements; also as an expression, and as a function's body
  kLocals,    // local a, b = 1;  -> variables
  kVariable,  // name, [initial value]
  kDefine,    // path of names (kName or kSelector each), parameters, body
  kIf,        // condition, statement, [statement]
  kWhile,     // condition, statement
  kDo,        // statement, condition
  kFor,       // kForPart, kForPart, kForPart, statement
  kForPart,   // [expression]; of the first part one or more
  kReturn,    // [expression]
  kBreak,
  kContinue,
  kSwitch,  // expression, statement
  kCase,    // literal: kNumber, kString, kNil, kSymbol
  kDefault,
  kTry,         // block, [kCatch], [kFinally]
  kCatch,       // name, block
  kFinally,     // block
  kThrow,       // expression
  kExpression,  // expression; as a statement
  kParameters,  // parameters
  kParameter,   // name, [default value]; `name..` ends with the token ..

  // expressions
  kComma,        // two or more
  kAssign,       // place, value; the operator's token is between them
  kConditional,  // condition, if true, if untrue
  kOr,           // two or more
  kAnd,          // two or more
  kBinary,       // two or more, with operators of one level between them
  kPrefix,       // operand, after the operator
  kChain,        // the first one, then links: kMember, kIndex, kCall, kStep
  kMember,       // .name: kSelector, or .(expression)
  kIndex,        // [expression]
  kCall,         // arguments
  kStep,         // ++ or --
  kName,         // an identifier in an expression or a declaration: a variable, a global, true, false
  kSelector,     // the identifier of a property: after a point, or a key
  kNumber,       // integer, float or character
  kString,
  kNil,
  kSymbol,       // \name
  kVector,       // \[...]: elements
  kObject,       // \{...}: [kName, the parent], pairs
  kPair,         // kSelector, value
  kParenthesis,  // expression
  kFunction,     // [kName or kString], parameters, body
  kSuper,        // kMember, kCall
  kNew,          // kName or kParenthesis, [kCall]
};

constexpr uint32_t kBobNoNode = UINT32_MAX;

struct BobNode {
  BobNodeKind kind;
  uint32_t begin, end;              // bytes of the source, without comments around it
  uint32_t firstToken, endToken;    // in BobTree::tokens.all; comments between are counted
  uint32_t parent;                  // kBobNoNode for the root
  uint32_t firstChild, childCount;  // in BobTree::childIndices
};

struct BobSyntaxError {
  uint32_t offset, length;  // bytes of the source; a length of 0 at its end
  std::string text;         // in the compiler's words, without "Syntax error - "
};

// What the compiler calls a stack overflow: some 200 parentheses, or other things, in each other.
inline constexpr char kBobNestedTooDeep[] = "Nested too deep for the player";

struct BobTree {
  std::string_view source;  // as it was given: it must outlive the tree
  BobTokens tokens;
  std::vector<BobNode> nodes;  // children before parents; the root is the last one
  std::vector<uint32_t> childIndices;
  std::vector<BobSyntaxError> errors;  // as they were found; the first is the compiler's. One at most at each offset

  uint32_t root() const { return uint32_t(nodes.size()) - 1; }
  std::span<const uint32_t> children(uint32_t node) const {
    return std::span(childIndices).subspan(nodes[node].firstChild, nodes[node].childCount);
  }
  std::string_view text(uint32_t node) const {
    return source.substr(nodes[node].begin, nodes[node].end - nodes[node].begin);
  }
  std::string_view text(const BobSourceToken& token) const {
    return source.substr(token.begin, token.end - token.begin);
  }
  // The innermost node with begin <= offset <= end; of two that touch there, the later one. The root if there is none.
  uint32_t nodeAt(size_t offset) const;
};

// In time and space linear in the source's length, whatever it is.
BobTree parseBob(std::string_view source);
