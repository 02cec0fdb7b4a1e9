#include "bob/tools/textcalls.h"

#include "bob/base/stream.h"
#include "bob/compile/scanner.h"
#include "bob/run/calls.h"

std::vector<BobTextCall> bobTextCalls(BobInterp* interp, std::string_view source, std::string_view name) {
  std::vector<BobTextCall> calls;
  bobTry(interp, [&] {
    BobStringInput input(source);
    BobScanner scanner;
    scanner.attach(interp, &input);
    int token = scanner.next();
    while (token != kTokenEof) {
      const bool isCalled = token == kTokenIdentifier && scanner.tokenText == name;
      token = scanner.next();
      if (!isCalled || token != '(') continue;
      token = scanner.next();
      if (token != kTokenString) continue;
      const BobTextCall call{scanner.tokenText, scanner.lineNumber};
      token = scanner.next();
      if (token == ')') calls.push_back(call);
    }
  });
  return calls;
}
