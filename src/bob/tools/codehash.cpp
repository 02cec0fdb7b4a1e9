#include "bob/tools/codehash.h"

#include "bob/heap/interp.h"
#include "bob/tools/objectformat.h"

using namespace BobLayout;

namespace {

// FNV-1a of 64 bits.
class Hasher {
 public:
  explicit Hasher(BobInterp* i) : interp(i) {}

  void code(BobValue code, int depth) {
    const uint32_t* w = interp->words(code);
    const uint32_t count = bobCodeCount(w[kCodeCount]);
    tagged(kBobTagCode, count);
    for (uint32_t i = 0; i < count; ++i) value(w[kCodeElements + i], depth);
  }

  uint64_t hash = 0xCBF29CE484222325;

 private:
  void byte(uint8_t b) { hash = (hash ^ b) * 0x100000001B3; }
  void word(uint32_t n) {
    for (int i = 0; i < 4; ++i) byte(uint8_t(n >> 8 * i));
  }
  void tagged(BobObjectTag tag, uint32_t n) {
    byte(tag);
    word(n);
  }
  void text(BobObjectTag tag, std::string_view bytes) {
    tagged(tag, uint32_t(bytes.size()));
    for (const char c : bytes) byte(uint8_t(c));
  }

  // What a program can change (object files may have vectors and objects among the literals) counts by its kind alone.
  void value(BobValue v, int depth) {
    if (v == kBobNil) return byte(kBobTagNil);
    switch (interp->typeOf(v)) {
      case kBobSymbol: return text(kBobTagSymbol, interp->symbolOf(v));
      case kBobString: return text(kBobTagString, interp->stringOf(v));
      case kBobInteger: return tagged(kBobTagInteger, uint32_t(interp->integerOf(v)));
      case kBobFloat:
        tagged(kBobTagFloat, interp->words(v)[kFloatWords]);
        return word(interp->words(v)[kFloatWords + 1]);
      case kBobCompiledCode:
        if (depth < kBobValueDepth) code(v, depth + 1);
        return;
      default: byte(kBobTagObject);
    }
  }

  BobInterp* interp;
};

}  // namespace

uint64_t bobCodeHash(BobInterp* interp, BobValue code) {
  Hasher hasher(interp);
  hasher.code(code, 0);
  return hasher.hash;
}
