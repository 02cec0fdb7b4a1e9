#include "bob/compile/statementreader.h"

#include <utility>

#include "bob/compile/compiler.h"

struct BobStatementReader::OuterInput {
  BobScanner scanner;
  BobCodeNames codeNames;
  std::string sourceName;
};

BobStatementReader::BobStatementReader(BobScope* scope, BobStream* source, BobCodeNames names, std::string sourceName)
    : scope(scope),
      outer(new OuterInput{std::move(scope->interp->compiler->scanner),
                           std::exchange(scope->interp->compiler->codeNames, std::move(names)),
                           std::exchange(scope->interp->compiler->sourceName, std::move(sourceName))}) {
  BobCompiler& compiler = *scope->interp->compiler;
  compiler.scanner = {};
  compiler.scanner.attach(scope->interp, source);
}

BobStatementReader::~BobStatementReader() {
  scope->interp->sourceLine = outer->scanner.lineNumber;
  scope->interp->compiler->scanner = std::move(outer->scanner);
  scope->interp->compiler->codeNames = std::move(outer->codeNames);
  scope->interp->compiler->sourceName = std::move(outer->sourceName);
}

BobValue BobStatementReader::next() { return scope->interp->compiler->compileStatement(scope->object); }

void bobSetCodeListener(BobInterp* interp, BobCodeListener listener) {
  interp->compiler->listener = std::move(listener);
}

int bobCurrentLine(const BobInterp* interp) { return interp->sourceLine; }
BobSourcePlace bobCurrentPlace(const BobInterp* interp) {
  return interp->compiler ? interp->compiler->scanner.placeInLine() : BobSourcePlace{interp->sourceLine, 1};
}
std::string bobCurrentSource(const BobInterp* interp) {
  return interp->compiler ? interp->compiler->sourceName : std::string();
}
