// Where compiled code was written: the source file and line of each instruction, and what its variables are called.
//
// Compiled code has no space for it, so it is kept apart, and a piece of code is found by what it is made of
// (bobCodeHash).
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "bob/compile/codenotes.h"

// Of one function or top-level statement.
struct BobCodeLines {
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
  std::vector<std::vector<std::string>> around;  // variables of what the function was written in, innermost first
  bool continuesLine = false;                    // a top-level statement in whose first line the one before it ends

  int lineAt(uint32_t offset) const;
  // For each line the first place where it begins, by offset: of a call over several lines the instructions go to and
  // fro between them. Offsets are those of instructions that are run. A line that the statement before has begun is
  // none.
  std::vector<Start> firstStarts() const;
  bool operator==(const BobCodeLines&) const = default;
};

// From a place in what the compiler read to a line of the file.
using BobLineOfPlace = std::function<int(const BobSourcePlace&)>;

// What the compiler has just noted of some code. Without `lineOf` the compiler's lines are those of the file.
BobCodeLines bobCodeLinesOf(BobInterp* interp, BobValue code, const BobCodeNotes& notes, std::string file,
                            const BobLineOfPlace& lineOf = {});
