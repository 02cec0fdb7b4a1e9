// Source text: compiled and run, written as an object file, read again and listed.
#include "bob/compile/statementreader.h"
#include "bob/tools/disassemble.h"
#include "bobinterp.h"

namespace {

class Sink : public BobStream {
 public:
  int PutC(int c) override { return bytes += char(c), c; }
  std::string bytes;
};

void RoundTrip(BobInterp* interp, BobValue method) {
  const BobLocal code(interp, bobMethodCode(interp, method));
  Sink written, again;
  if (!bobWriteValue(interp, code, &written)) __builtin_trap();
  BobStringInput input(written.bytes);
  BobValue copy;
  if (!bobReadValue(bobRootScope(interp), &input, &copy) || !bobWriteValue(interp, copy, &again)) __builtin_trap();
  if (written.bytes != again.bytes) __builtin_trap();
  bobDisassemble(interp, copy, bobStdout(interp));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const FuzzInterp interp;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  bobTry(interp, [&] {
    BobStringInput input(text);
    BobStatementReader statements(bobRootScope(interp), &input);
    while (const BobValue method = statements.next()) RoundTrip(interp, method);
  });
  bobTry(interp, [&] {
    BobStringInput input(text);
    bobRunSource(bobRootScope(interp), &input, bobStdout(interp));
  });
  return 0;
}
