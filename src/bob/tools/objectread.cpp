#include "bob/tools/objectread.h"

#include <memory>
#include <string>

#include "bob/heap/heap.h"
#include "bob/heap/local.h"
#include "bob/heap/raise.h"
#include "bob/model/objects.h"
#include "bob/model/openfile.h"
#include "bob/model/scopes.h"
#include "bob/model/symbols.h"
#include "bob/model/values.h"
#include "bob/run/calls.h"
#include "bob/tools/objectformat.h"

using namespace BobLayout;

namespace {

class Reader {
 public:
  Reader(BobScope* scope, BobStream* stream) : scope(scope), interp(scope->interp), stream(stream) {}

  bool value(BobValue* result) {
    switch (stream->GetC()) {
      case kBobTagNil: *result = kBobNil; return true;
      case kBobTagCode: return code(result);
      case kBobTagVector: return vector(result);
      case kBobTagObject: return object(result);
      case kBobTagSymbol: return symbol(result);
      case kBobTagString: return string(result);
      case kBobTagInteger: return integer(result);
      case kBobTagFloat: return floating(result);
      default: return false;
    }
  }

  bool code(BobValue* result) {
    const Level level(this);
    uint32_t count;
    if (!word(&count)) return false;
    const BobLocal code(interp->locals, bobMakeCode(interp, count));
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
      if (++reader->depth > kBobValueDepth) bobRaise(reader->interp, kBobStackOverflow);
    }
    ~Level() { --reader->depth; }
    Reader* reader;
  };

  bool vector(BobValue* result) {
    const Level level(this);
    uint32_t count;
    if (!word(&count)) return false;
    const BobLocal vector(interp->locals, bobMakeVector(interp, count));
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
    const BobLocal object(interp->locals, bobMakeObject(interp, parent));
    uint32_t count;
    if (!word(&count)) return false;
    for (uint32_t i = 0; i < count; ++i) {
      BobLocal key(interp->locals, kBobNil);
      BobValue property;
      if (!value(&key.value) || !value(&property)) return false;
      bobSetProperty(interp, object, key, property);
    }
    *result = object;
    return true;
  }

  // The length is believed only as far as the bytes come.
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

void runRecords(BobScope* scope, BobStream* stream) {
  BobInterp* interp = scope->interp;
  BobValue code;
  while (stream->GetC() == kBobTagCode && Reader(scope, stream).code(&code))
    bobCall(scope, bobMakeMethod(interp, code, kBobNil, scope->object), {});
}

}  // namespace

bool bobReadValue(BobScope* scope, BobStream* stream, BobValue* value) { return Reader(scope, stream).value(value); }

bool bobLoadObjectStream(BobScope* scope, BobStream* stream) {
  return bobTry(scope->interp, [&] { runRecords(scope, stream); });
}

bool bobLoadObjectFile(BobScope* scope, const char* path) {
  BobInterp* interp = scope->interp;
  const std::string name = path;  // the path may lie in the heap
  const std::unique_ptr<BobStream> stream = bobOpenFile(interp, name.c_str(), "rb");
  if (!stream) bobRaiseText(interp, kBobFileNotFound, name.c_str());
  for (char c : kBobMagic)
    if (stream->GetC() != c) bobRaiseText(interp, kBobNotObjectFile, name.c_str());
  uint32_t version = 0;
  if (!Reader(scope, stream.get()).word(&version) || version != kBobObjectVersion)
    bobRaiseNumber(interp, kBobWrongVersion, int32_t(version));
  return bobLoadObjectStream(scope, stream.get());
}

std::string bobObjectStreamName(std::string_view records) {
  BobStringInput stream(records);
  const auto word = [&stream] {
    uint32_t n = 0;
    for (int i = 0; i < 4; ++i) n = n << 8 | uint32_t(stream.GetC() & 0xFF);
    return n;
  };
  if (stream.GetC() != kBobTagCode || word() < 2 || stream.GetC() != kBobTagString) return "";
  for (uint32_t left = word(); left > 0; --left)
    if (stream.GetC() == -1) return "";
  const int tag = stream.GetC();
  if (tag != kBobTagSymbol && tag != kBobTagString) return "";
  std::string name;
  for (uint32_t left = word(); left > 0; --left) {
    const int c = stream.GetC();
    if (c == -1) return "";
    name += char(c);
  }
  return name;
}
