#include "bob/compile/statementreader.h"

#include "bob/compiler.h"

using namespace BobLayout;

struct BobStatementReader::OuterInput {
  BobScanner scanner;
};

BobStatementReader::BobStatementReader(BobScope* scope, BobStream* source)
    : scope(scope), outer(new OuterInput{std::move(scope->interp->compiler->scanner)}) {
  BobCompiler& compiler = *scope->interp->compiler;
  compiler.scanner = {};
  compiler.attach(source);
}

BobStatementReader::~BobStatementReader() { scope->interp->compiler->scanner = std::move(outer->scanner); }

BobValue BobStatementReader::next() { return scope->interp->compiler->compileStatement(scope->object); }

BobValue bobMethodCode(BobInterp* interp, BobValue method) { return interp->words(method)[kMethodCode]; }

int bobCurrentLine(const BobInterp* interp) { return interp->compiler ? interp->compiler->scanner.lineNumber : 0; }
