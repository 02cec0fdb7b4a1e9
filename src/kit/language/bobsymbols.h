// What the names in a Bob source mean: variables by their scopes, globals and selectors by their names.
//
// One source at a time. Globals, selectors and members have no scope, so whoever knows several sources of a page joins
// them by name. The surprising rule is the language's own: a name is a variable from its declaration on; before it, in
// its own initial value too, it is what the scopes around say.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kit/language/bobtree.h"

enum class BobSymbolKind : uint8_t {
  kGlobal,
  kArgument,
  kLocal,     // a variable of a block
  kImplicit,  // this and _next of a function
  kSelector,  // a property or method: after a point, a key, the name of a method, or \name
  kConstant,  // true, false
};

struct BobSymbol {
  std::string name;
  BobSymbolKind kind;
  uint32_t scope;              // in BobSymbols::scopes; the source's, 0, for what has no scope
  std::vector<uint32_t> uses;  // in BobSymbols::uses, by ascending offset
  // The class-like object that it is or is a child of, as far as its assignments agree: see BobClass. It may be a path
  // that no class is called by, "widgets.bar".
  std::string object;
  uint32_t visibleFrom = 0;  // of a variable: where its declaration ends
};

enum class BobUseKind : uint8_t {
  kRead,
  kWrite,    // = and the like, ++, --
  kDeclare,  // local, a parameter
  kDefine,   // define f, function f, the method of define a.f, the key of an object
  kMention,  // \name
};

struct BobUse {
  uint32_t offset, length;
  uint32_t symbol;
  BobUseKind kind;
  uint32_t node;  // of the name: kName, kSelector or kSymbol
  bool isDefinition() const { return kind == BobUseKind::kDeclare || kind == BobUseKind::kDefine; }
};

// Of a function, or of a block with `local`.
struct BobNameScope {
  uint32_t parent;                // kBobNoNode for the source's
  uint32_t node;                  // kSource, kFunction, kDefine or kBlock
  uint32_t begin, end;            // a function's begins with its parameters
  std::vector<uint32_t> symbols;  // in the order of their declarations
  std::string thisObject;         // the class-like object that `this` is, in a method; of blocks, as around them
};

// An object that is given methods and properties by name, as a class is: `define thing.method()`, `thing = \{ ... }`,
// `thing.key = ...`, and this.key in its methods.
struct BobClass {
  struct Member {
    std::string name;
    uint32_t offset;  // of a place that makes it
    bool isMethod;
    std::vector<std::string> parameters;  // of a method; "rest.." with its points
  };
  std::string name;    // a global, or a path: "frame.bar"
  std::string parent;  // of \{ Parent } or new Parent; empty when unknown
  uint32_t offset;     // where it is first made or given something
  std::vector<Member> members;
};

// A function that a call can name.
struct BobFunctionInfo {
  std::string name;      // the last name of a path
  std::string ofObject;  // the path before it, of a method; empty for a global function
  uint32_t node;         // kDefine, or the kFunction of `name = function`, `key: function`, `function name`
  uint32_t nameOffset;
  std::vector<std::string> parameters;  // as written, with "= default" or ".."
};

struct BobSymbols {
  std::vector<BobSymbol> symbols;
  std::vector<BobUse> uses;  // by ascending offset
  std::vector<BobNameScope> scopes;
  std::vector<BobClass> classes;
  std::vector<BobFunctionInfo> functions;

  // The use that the offset lies in, or right behind; null if there is none.
  const BobUse* useAt(size_t offset) const;
  // The use that best says where the symbol comes from: a declaration, a definition, or the first write; null if there
  // is none.
  const BobUse* definitionOf(uint32_t symbol) const;
  uint32_t scopeAt(size_t offset) const;
  // Variables that can be seen there, the innermost first, without those that others hide. Globals are not among them.
  std::vector<uint32_t> variablesAt(size_t offset) const;
  // Globals or selectors by name; null if the source has none of that name.
  const BobSymbol* find(BobSymbolKind kind, std::string_view name) const;
  const BobClass* findClass(std::string_view name) const;
};

BobSymbols symbolsOf(const BobTree& tree);

// Where the cursor is, for completion.
struct BobCursor {
  enum Kind {
    kNothing,  // in a comment, a string or a number
    kName,     // an expression, or a statement, may begin with a name here
    kMember,   // after a point
    kSymbol,   // after a backslash
    kNewName,  // a name is made here: after local, define, function, in parameters
    kKey,      // in \{ ... }
  } kind = kNothing;
  uint32_t begin = 0, end = 0;  // of the name that is being written; empty when it hasn't begun
  // Of kMember. What stands before the point, as far as its kind is known: the name of a class-like object (also for
  // `this` in its methods, and for a variable that is only ever assigned `new Thing`), or String, Vector, Integer,
  // Float, Symbol, Object, Method of a literal. Otherwise empty.
  std::string object;
  // The text before the point back to the chain's beginning, "widgets.hour"; "super" after super.
  std::string chain;
};
BobCursor cursorAt(const BobTree& tree, const BobSymbols& symbols, size_t offset);

// The call whose arguments the offset is in; also in a source that breaks off there.
struct BobCallAt {
  std::string name;    // of the function or selector; empty when a value is called
  std::string object;  // as in BobCursor, of a method
  uint32_t nameOffset = 0;
  bool isMethod = false;  // a selector, or `new`, which calls initialize
  size_t argument = 0;    // which one, from 0
};
// False if there is none.
bool callAt(const BobTree& tree, const BobSymbols& symbols, size_t offset, BobCallAt* call);
