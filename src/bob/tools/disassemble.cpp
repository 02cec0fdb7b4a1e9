#include "bob/tools/disassemble.h"

#include "bob/base/opcodes.h"
#include "bob/heap/interp.h"
#include "bob/model/print.h"
#include "bob/model/values.h"

using namespace BobLayout;

namespace {

class Lister {
 public:
  Lister(BobInterp* interp, BobValue code, BobStream* stream) : interp(interp), code(code), stream(stream) {
    const uint32_t* w = interp->words(code);
    const BobValue string = w[kCodeElements];
    bytes = interp->stringOf(string);
    literals = bobCodeCount(w[kCodeCount]);
    const BobValue name = bobCodeName(interp, code);
    isNamed = interp->isA(name, kBobString);
    if (isNamed) prefix = interp->stringOf(name).substr(0, 32);
  }

  void list(const BobListingNote& note) {
    for (uint32_t at = 0; at < bytes.size(); at += instruction(at))
      if (note) note(code, at);
  }

 private:
  uint8_t byte(uint32_t at) const { return uint8_t(bytes[at]); }

  uint32_t instruction(uint32_t at) {
    if (isNamed)
      bobPutText(stream, prefix);
    else
      bobPutFormat(stream, "%08x", code);
    bobPutFormat(stream, ":%04x %02x ", at, byte(at));
    const auto* start = reinterpret_cast<const uint8_t*>(bytes.data());
    const uint32_t length = bobInstructionLength(start, at, uint32_t(bytes.size()));
    if (length == 0) {
      bobPutText(stream, "      <UNKNOWN>\n");
      return 1;
    }
    const auto& [name, form] = kBobOpcodes[byte(at)];
    const unsigned a = length > 1 ? byte(at + 1) : 0, b = length > 2 ? byte(at + 2) : 0;
    switch (form) {
      case BobForm::kNone: bobPutFormat(stream, "      %s\n", name); break;
      case BobForm::kByte: bobPutFormat(stream, "%02x    %s %02x\n", a, name, a); break;
      case BobForm::kBytes: bobPutFormat(stream, "%02x %02x %s %02x %02x\n", a, b, name, a, b); break;
      case BobForm::kWord: bobPutFormat(stream, "%02x %02x %s %02x%02x\n", a, b, name, b, a); break;
      case BobForm::kLiteral:
        bobPutFormat(stream, "%02x %02x %s %02x%02x ; ", a, b, name, b, a);
        literal(a | b << 8);
        break;
      case BobForm::kSwitch:
        bobPutFormat(stream, "%02x %02x %s %02x%02x\n", a, b, name, b, a);
        switchTable(at + 3, a | b << 8);
        break;
    }
    return length;
  }

  void literal(uint32_t number) {
    if (number < literals) bobPrint(interp, interp->words(code)[kCodeElements + number], stream);
    bobPutText(stream, "\n");
  }

  void switchTable(uint32_t at, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i, at += 4) {
      bobPutFormat(stream, "                 %02x%02x %02x%02x ; ", byte(at + 1), byte(at), byte(at + 3), byte(at + 2));
      literal(byte(at) | uint32_t(byte(at + 1)) << 8);
    }
    bobPutFormat(stream, "                 %02x%02x\n", byte(at + 1), byte(at));
  }

  BobInterp* interp;
  BobValue code;
  BobStream* stream;
  std::string_view bytes;  // in the heap: printing doesn't allocate there
  std::string_view prefix;
  bool isNamed;  // by a String, which may be empty
  uint32_t literals;
};

}  // namespace

void bobDisassemble(BobInterp* interp, BobValue code, BobStream* stream, const BobListingNote& note) {
  const uint32_t* w = interp->words(code);
  if (bobCodeCount(w[kCodeCount]) == 0 || !interp->isA(w[kCodeElements], kBobString)) return;
  Lister(interp, code, stream).list(note);
}

void bobDisassembleAll(BobInterp* interp, BobValue code, BobStream* stream, const BobListingNote& note) {
  bobDisassemble(interp, code, stream, note);
  const uint32_t* w = interp->words(code);
  for (uint32_t i = 1; i < bobCodeCount(w[kCodeCount]); ++i)
    if (interp->isA(w[kCodeElements + i], kBobCompiledCode))
      bobDisassembleAll(interp, w[kCodeElements + i], stream, note);
}
