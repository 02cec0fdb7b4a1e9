// Where compiled code was written: the source file and line of each instruction, and what its variables are called.
//
// Pages and object files have no space for it, so it is kept apart, and a piece of code is found by what it is made of
// (bobCodeHash). Where the same code was written in several places, all of them are named.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "bob/compile/statementreader.h"

// Of one function or top-level statement.
struct CodeLines {
  struct Start {
    uint32_t offset;  // of the first instruction that comes from the line
    int line;         // from 1
    bool operator==(const Start&) const = default;
  };
  // A block with variables of its own; they exist from offset `begin` on, before `end`.
  struct Block {
    uint32_t begin, end;
    std::vector<std::string> names;  // by slot, from 1
    bool operator==(const Block&) const = default;
  };

  uint64_t hash = 0;
  std::string file;                    // the source, as it can be opened from here
  std::vector<Start> starts;           // by offset; one at least
  std::vector<std::string> arguments;  // by slot, from 1: this, _next and so on; none for a top-level statement
  std::vector<Block> blocks;           // outer ones before those in them

  int lineAt(uint32_t offset) const;
  bool operator==(const CodeLines&) const = default;
};

// From a place in what the compiler read to a line of the file.
using LineOfPlace = std::function<int(const BobSourcePlace&)>;

// What the compiler has just noted of some code. Without `lineOf` the compiler's lines are those of the file.
CodeLines codeLinesOf(BobInterp* interp, BobValue code, const BobCodeNotes& notes, std::string file,
                      const LineOfPlace& lineOf = {});

// Code that may run, and where it was written.
class CodePlaces {
 public:
  void add(const CodeLines& lines);
  void add(const std::vector<CodeLines>& all) {
    for (const CodeLines& lines : all) add(lines);
  }

  bool has(uint64_t hash) const { return known.contains(hash); }
  // "FILE:LINE", several with "or" between them, or nothing for code that nobody has added.
  std::string placeOf(uint64_t hash, uint32_t offset) const;

 private:
  std::unordered_multimap<uint64_t, CodeLines> known;
};
