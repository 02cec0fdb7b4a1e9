// What the compiler knows of a function and bytecode has no space for: where in the source each instruction comes from,
// and what its variables are called.
//
// Notes are taken only while somebody listens (bobSetCodeListener), and change nothing in the code. Whoever keeps them
// must find the code again by itself: a collection moves it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bob/base/value.h"

struct BobSourcePlace {
  int line = 0, column = 0;  // in bytes; from 1, 0 for nowhere
};

struct BobCodeNotes {
  struct Instruction {
    int offset;
    BobSourcePlace place;  // of the token that it comes from
  };
  // A block with variables of its own; they exist from `begin` on, before `end`.
  struct Block {
    int begin, end;
    std::vector<std::string> names;  // by slot, from 1
  };

  std::string source;                     // the file, as it was opened; empty for a text
  std::vector<Instruction> instructions;  // by offset
  std::vector<std::string> arguments;     // by slot, from 1: this, _next and so on; none for a top-level statement
  std::vector<Block> blocks;              // outer ones before those in them
  // Variables of the functions and blocks that the function is written in, as far as they are declared by its end, by
  // slot, the innermost first.
  std::vector<std::vector<std::string>> around;
  BobSourcePlace before;  // where the top-level statement before ended; nowhere for the first one, and for functions

  void openBlock(int begin) { blocks.push_back({begin, 0, {}}); }
  void closeBlock(int end, const std::vector<std::string>& names);
};

// Hears of each function and top-level statement once it is compiled, inner functions first; what follows in the same
// statement may still be an error. It must not allocate in the heap.
using BobCodeListener = std::function<void(BobInterp*, BobValue code, const BobCodeNotes&)>;
