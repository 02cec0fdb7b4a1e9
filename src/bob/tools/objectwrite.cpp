#include "bob/tools/objectwrite.h"

#include <memory>
#include <string>

#include "bob/compile/statementreader.h"
#include "bob/heap/interp.h"
#include "bob/heap/raise.h"
#include "bob/model/openfile.h"
#include "bob/model/properties.h"
#include "bob/model/values.h"
#include "bob/model/vectors.h"
#include "bob/tools/objectformat.h"

using namespace BobLayout;

namespace {

class Writer {
 public:
  Writer(BobInterp* interp, BobStream* stream) : interp(interp), stream(stream) {}

  bool value(BobValue value, int depth) {
    if (depth == kBobValueDepth) bobRaise(interp, kBobStackOverflow);
    if (value == kBobNil) return byte(kBobTagNil);
    const BobTypeRecord* record = interp->recordOf(value);
    const uint32_t type = interp->typeOf(value);
    if (type == kBobCompiledCode) {
      const uint32_t* w = interp->words(value);
      return byte(kBobTagCode) && elements(w + kCodeElements, bobCodeCount(w[kCodeCount]), depth);
    }
    if (record->base == kBobVector)
      return byte(kBobTagVector) && elements(bobVectorElements(interp, value), bobVectorSize(interp, value), depth);
    if (record->base == kBobObject) return object(value, depth);
    if (type == kBobSymbol) return byte(kBobTagSymbol) && text(interp->symbolOf(value));
    if (type == kBobString) return byte(kBobTagString) && text(interp->stringOf(value));
    if (type == kBobInteger) return byte(kBobTagInteger) && word(uint32_t(interp->integerOf(value)));
    if (type != kBobFloat) return false;
    const double number = interp->floatOf(value);
    uint64_t bits;
    std::memcpy(&bits, &number, sizeof bits);
    return byte(kBobTagFloat) && word(uint32_t(bits >> 32)) && word(uint32_t(bits));
  }

  bool word(uint32_t n) {
    return byte(uint8_t(n >> 24)) && byte(uint8_t(n >> 16)) && byte(uint8_t(n >> 8)) && byte(uint8_t(n));
  }

 private:
  bool byte(uint8_t b) { return stream->PutC(b) != -1; }
  bool text(std::string_view text) { return word(uint32_t(text.size())) && bobPutText(stream, text); }

  bool elements(const uint32_t* first, uint32_t count, int depth) {
    if (!word(count)) return false;
    for (uint32_t i = 0; i < count; ++i)
      if (!value(first[i], depth + 1)) return false;
    return true;
  }

  // The parent is lost: nil is written for whatever it is.
  bool object(BobValue object, int depth) {
    if (!byte(kBobTagObject) || !byte(kBobTagNil) || !word(bobPropertyCount(interp, object))) return false;
    bool ok = true;
    bobForEachProperty(interp, object, [&](BobValue property) {
      const uint32_t* w = interp->words(property);
      ok = ok && value(w[kKey], depth + 1) && value(w[kValue], depth + 1);
    });
    return ok;
  }

  BobInterp* interp;
  BobStream* stream;
};

void writeRecord(BobInterp* interp, BobValue method, BobStream* stream) {
  if (!bobWriteValue(interp, bobMethodCode(interp, method), stream)) bobRaise(interp, kBobWritingFile);
}

}  // namespace

bool bobWriteHeader(BobStream* stream) {
  return bobPutText(stream, {kBobMagic, sizeof kBobMagic}) && Writer(nullptr, stream).word(kBobObjectVersion);
}

bool bobWriteValue(BobInterp* interp, BobValue value, BobStream* stream) {
  return Writer(interp, stream).value(value, 0);
}

bool bobCompileFile(BobScope* scope, const char* source, const char* object) {
  BobInterp* interp = scope->interp;
  const std::string objectName = object;  // the names may lie in the heap
  const std::unique_ptr<BobStream> in = bobOpenFile(interp, source, "r");
  if (!in) return false;
  const std::unique_ptr<BobStream> out = bobOpenFile(interp, objectName.c_str(), "wb");
  if (!out || !bobWriteHeader(out.get())) return false;
  BobStatementReader statements(scope, in.get());
  while (const BobValue method = statements.next()) writeRecord(interp, method, out.get());
  if (out->Close() != 0) bobRaise(interp, kBobWritingFile);
  return true;
}

void bobCompileText(BobScope* scope, std::string_view text, BobStream* stream) {
  BobStringCopyInput input(text);
  BobStatementReader statements(scope, &input);
  if (const BobValue method = statements.next()) writeRecord(scope->interp, method, stream);
}
