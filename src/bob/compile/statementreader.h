// Source text, statement by statement: each is compiled when it is asked for, so that whoever runs it before asking
// for the next lets a `define` take effect in between.
//
// Readers nest, as when a running statement loads a file: the newest one has the compiler until it is destroyed, and
// the one outside then goes on after the statement that it is at.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "bob/base/stream.h"
#include "bob/base/value.h"
#include "bob/compile/codenotes.h"

struct BobScope;

// What code without a name of its own is called in tracebacks and listings, by the place at which it begins: that is
// top-level statements and functions without a name.
using BobCodeNames = std::function<std::string(const BobSourcePlace& begin)>;

class BobStatementReader {
 public:
  // The source must outlive the reader. Without `names` such code is anonymous. `sourceName` is what notes call the
  // source.
  BobStatementReader(BobScope* scope, BobStream* source, BobCodeNames names = {}, std::string sourceName = {});
  ~BobStatementReader();
  BobStatementReader(const BobStatementReader&) = delete;
  BobStatementReader& operator=(const BobStatementReader&) = delete;

  // The next statement as a Method of the scope, or 0 at the end of the source. Raises what the compiler raises.
  BobValue next();

 private:
  struct OuterInput;
  BobScope* scope;
  std::unique_ptr<OuterInput> outer;
};

// Of all that is compiled from here on; an empty one ends it. The interpreter must have a compiler.
void bobSetCodeListener(BobInterp* interp, BobCodeListener listener);

// The line of the source that is being read, for messages; 0 when there has been none. Also the token in it that was
// read last, and what its reader calls the source.
int bobCurrentLine(const BobInterp* interp);
BobSourcePlace bobCurrentPlace(const BobInterp* interp);
std::string bobCurrentSource(const BobInterp* interp);
