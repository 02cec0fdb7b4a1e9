// An interpreter of the player's sizes without a page, and what the kit does with compiled code.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bob/bob.h"
#include "bob/tools/disassemble.h"

// Its streams are dropped until somebody sets others.
class BobRuntime {
 public:
  BobRuntime();
  BobRuntime(const BobRuntime&) = delete;
  BobRuntime& operator=(const BobRuntime&) = delete;

 private:
  const std::unique_ptr<BobInterp, void (*)(BobInterp*)> owned;

 public:
  BobInterp* const interp = owned.get();
};

// Collects what is written.
class BobTextStream : public BobStream {
 public:
  int PutC(int c) override {
    text += char(c);
    return c;
  }

  std::string text;
};

// Lists the code on the standard output stream, then the functions among its literals.
void bobListCode(BobInterp* interp, BobValue code, const BobListingNote& note = {});
// Whether the bytes begin as an object file of any version does.
bool isObjectFile(const std::vector<uint8_t>& bytes);
// Lists records up to the end or the first that is none; false after an error.
bool bobListRecords(BobInterp* interp, BobStream* stream, const BobListingNote& note = {});
