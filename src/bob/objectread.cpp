// Reading values and loading object files.
#include "bob/bob.h"

using namespace BobLayout;

namespace {

constexpr int kValueDepth = 256;  // containers in containers

enum Tag { kTagNil, kTagCode, kTagVector, kTagObject, kTagSymbol, kTagString, kTagInteger, kTagFloat };

class Reader {
 public:
  Reader(BobScope* scope, BobStream* stream) : scope(scope), interp(scope->interp), stream(stream) {}

  bool value(BobValue* result) {
    switch (stream->GetC()) {
      case kTagNil: *result = kBobNil; return true;
      case kTagCode: return code(result);
      case kTagVector: return vector(result);
      case kTagObject: return object(result);
      case kTagSymbol: return symbol(result);
      case kTagString: return string(result);
      case kTagInteger: return integer(result);
      case kTagFloat: return floating(result);
      default: return false;
    }
  }

  bool code(BobValue* result) {
    const Level level(this);
    uint32_t count;
    if (!word(&count)) return false;
    const BobLocal code(interp, bobMakeCode(interp, count));
    for (uint32_t i = 0; i < count; ++i) {
      BobValue element;
      if (!value(&element)) return false;
      interp->words(code)[kCodeElements + i] = element;
    }
    *result = code;
    return true;
  }

  bool word(uint32_t* result) {
    uint32_t n = 0;
    for (int i = 0; i < 4; ++i) {
      const int c = stream->GetC();
      if (c == -1) return false;
      n = n << 8 | uint32_t(c);
    }
    *result = n;
    return true;
  }

 private:
  struct Level {
    explicit Level(Reader* reader) : reader(reader) {
      if (++reader->depth > kValueDepth) bobRaise(reader->interp, kBobStackOverflow);
    }
    ~Level() { --reader->depth; }
    Reader* reader;
  };

  bool vector(BobValue* result) {
    const Level level(this);
    uint32_t count;
    if (!word(&count)) return false;
    const BobLocal vector(interp, bobMakeVector(interp, count));
    for (uint32_t i = 0; i < count; ++i) {
      BobValue element;
      if (!value(&element)) return false;
      interp->words(vector)[kElements + i] = element;
    }
    *result = vector;
    return true;
  }

  // A parent is a Symbol that names it; the writer puts nil.
  bool object(BobValue* result) {
    const Level level(this);
    BobValue parent;
    if (!value(&parent)) return false;
    if (!interp->isA(parent, kBobSymbol) || parent == kBobNil)
      parent = kBobNil;
    else if (!bobFindGlobal(interp, scope->object, parent, &parent))
      return false;
    const BobLocal object(interp, bobMakeObject(interp, parent));
    uint32_t count;
    if (!word(&count)) return false;
    for (uint32_t i = 0; i < count; ++i) {
      BobLocal key(interp);
      BobValue property;
      if (!value(&key.value) || !value(&property)) return false;
      bobSetProperty(interp, object, key, property);
    }
    *result = object;
    return true;
  }

  // The stated length is believed only as far as the bytes come.
  bool text(std::string* result) {
    uint32_t length;
    if (!word(&length)) return false;
    if (length > interp->newSpace.top - interp->newSpace.base) bobRefuseAllocation(interp);
    for (uint32_t i = 0; i < length; ++i) {
      const int c = stream->GetC();
      if (c == -1) return false;
      *result += char(c);
    }
    return true;
  }

  bool symbol(BobValue* result) {
    std::string name;
    if (!text(&name)) return false;
    *result = bobIntern(interp, name);
    return true;
  }

  bool string(BobValue* result) {
    std::string bytes;
    if (!text(&bytes)) return false;
    *result = bobMakeString(interp, bytes);
    return true;
  }

  bool integer(BobValue* result) {
    uint32_t n;
    if (!word(&n)) return false;
    *result = bobMakeInteger(interp, int32_t(n));
    return true;
  }

  bool floating(BobValue* result) {
    uint32_t high, low;
    if (!word(&high) || !word(&low)) return false;
    const uint64_t bits = uint64_t(high) << 32 | low;
    double number;
    std::memcpy(&number, &bits, sizeof number);
    *result = bobMakeFloat(interp, number);
    return true;
  }

  BobScope* scope;
  BobInterp* interp;
  BobStream* stream;
  int depth = 0;
};

// False when a record is cut short.
void RunRecords(BobScope* scope, BobStream* stream) {
  BobInterp* interp = scope->interp;
  BobValue code;
  while (stream->GetC() == kTagCode && Reader(scope, stream).code(&code))
    bobCall(scope, bobMakeMethod(interp, code, kBobNil, scope->object), {});
}

}  // namespace

bool bobReadValue(BobScope* scope, BobStream* stream, BobValue* value) { return Reader(scope, stream).value(value); }

bool bobLoadObjectStream(BobScope* scope, BobStream* stream) {
  return bobTry(scope->interp, [&] { RunRecords(scope, stream); });
}

bool bobLoadObjectFile(BobScope* scope, const char* path) {
  BobInterp* interp = scope->interp;
  const std::string name = path;  // the path may lie in the heap
  const std::unique_ptr<BobStream> stream = bobOpenFile(interp, name.c_str(), "rb");
  if (!stream) bobRaiseText(interp, kBobFileNotFound, name.c_str());
  for (char c : {'B', 'O', 'B', 'O'})
    if (stream->GetC() != c) bobRaiseText(interp, kBobNotObjectFile, name.c_str());
  uint32_t version = 0;
  if (!Reader(scope, stream.get()).word(&version) || version != kBobObjectVersion)
    bobRaiseNumber(interp, kBobWrongVersion, int32_t(version));
  return bobLoadObjectStream(scope, stream.get());
}
