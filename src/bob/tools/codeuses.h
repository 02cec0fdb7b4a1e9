// What a piece of code does with globals, members and methods, as far as the code alone tells: for tools that check a
// program without running it.
//
// A value is known that is a literal, a function of the code, or what a path of names leads to, such as
// `widgets.volume`. Where paths of execution meet, and for variables, nothing is known.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "bob/base/value.h"

struct BobKnownValue {
  enum Kind { unknown, nil, truth, integer, text, symbol, path, made, function } kind = unknown;
  std::string name{};  // of a text or symbol; the path; of a made one the path of what it is made with
  int32_t number = 0;  // an integer; of a function its number in BobCodeUses::functions

  bool isPath(const char* other) const { return kind == path && name == other; }
};

struct BobCodeUse {
  enum Kind { readGlobal, setGlobal, readMember, setMember, call, send } kind;
  uint32_t offset;                         // of the instruction
  std::string name;                        // of the global, the member or the method; empty for a computed one
  BobKnownValue object;                    // that has the member or method; of a call the function
  BobKnownValue value;                     // that is set
  std::vector<BobKnownValue> arguments{};  // of a call or send
};

struct BobCodeUses {
  uint64_t hash = 0;  // bobCodeHash
  std::vector<BobCodeUse> uses;
  std::vector<uint32_t> throws;        // offsets of what is no more than the end of its value
  std::optional<uint32_t> unevenAt;    // where paths meet that have left different blocks, so that the code goes wrong
  std::vector<BobCodeUses> functions;  // in it, in order
  // Of the 4,096 and 256 that the compiler has for a statement, with the functions in it.
  uint32_t bytesToCompile = 0, literalsToCompile = 0;
};

// `code` is a CompiledCode. Allocates nothing.
BobCodeUses bobCodeUses(BobInterp* interp, BobValue code);
