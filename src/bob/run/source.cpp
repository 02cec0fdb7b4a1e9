#include "bob/run/source.h"

#include "bob/compile/statementreader.h"
#include "bob/heap/interp.h"
#include "bob/heap/local.h"
#include "bob/heap/raise.h"
#include "bob/model/openfile.h"
#include "bob/model/print.h"
#include "bob/run/calls.h"

void bobRunSource(BobScope* scope, BobStream* source, BobStream* echo, const std::string& name) {
  BobInterp* interp = scope->interp;
  BobStatementReader statements(scope, source, {}, name);
  while (const BobValue method = statements.next()) {
    const BobValue value = bobCall(scope, method, {});
    if (!echo) continue;
    bobPrint(interp, value, echo);
    bobPutText(echo, "\n");
  }
}

void bobLoadSource(BobScope* scope, const char* path, BobStream* echo) {
  const std::string name = path;  // the path may lie in the heap
  const std::unique_ptr<BobStream> source = bobOpenFile(scope->interp, name.c_str(), "r");
  if (!source) bobRaiseText(scope->interp, kBobFileNotFound, name.c_str());
  bobRunSource(scope, source.get(), echo, name);
}

BobValue bobEvaluate(BobScope* scope, std::string_view text) {
  BobStringCopyInput input(text);
  BobStatementReader statements(scope, &input);
  const BobValue method = statements.next();
  return method ? bobCall(scope, method, {}) : kBobNil;
}

bool bobConsoleEvaluate(BobScope* scope, std::string_view text) {
  BobInterp* interp = scope->interp;
  return bobTry(interp, [&] {
    const BobLocal value(interp, bobEvaluate(scope, text));
    bobPutText(interp->stdoutStream, "--> ");
    bobPrint(interp, value, interp->stdoutStream);
    bobPutText(interp->stdoutStream, "\n");
  });
}
