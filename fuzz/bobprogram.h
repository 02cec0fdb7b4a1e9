// What the targets of the language do with a program: compile and run it, write it as an object file, read that again
// and list it.
#pragma once

#include <string>
#include <string_view>

#include "bob/compile/statementreader.h"
#include "bob/tools/disassemble.h"
#include "bobinterp.h"

class FuzzSink : public BobStream {
 public:
  int PutC(int c) override { return bytes += char(c), c; }
  std::string bytes;
};

inline void roundTrip(BobInterp* interp, BobValue method) {
  const BobLocal code(interp, bobMethodCode(interp, method));
  FuzzSink written, again;
  if (!bobWriteValue(interp, code, &written)) __builtin_trap();
  BobStringInput input(written.bytes);
  BobValue copy;
  if (!bobReadValue(bobRootScope(interp), &input, &copy) || !bobWriteValue(interp, copy, &again)) __builtin_trap();
  if (written.bytes != again.bytes) __builtin_trap();
  bobDisassemble(interp, copy, bobStdout(interp));
}

inline void tryProgram(std::string_view text) {
  BobInterp* const interp = fuzzInterp();
  bobTry(interp, [&] {
    BobStringInput input(text);
    BobStatementReader statements(bobRootScope(interp), &input);
    while (const BobValue method = statements.next()) roundTrip(interp, method);
  });
  bobTry(interp, [&] {
    BobStringInput input(text);
    bobRunSource(bobRootScope(interp), &input, bobStdout(interp));
  });
}
