// The language without a page: running, compiling and listing files.
//
// What a program writes goes to the streams of the runtime, errors of the language included; false means that such an
// error has been reported there. A file that can't be opened, or compiled, is a KitError.
#pragma once

#include <string>

#include "bob/compile/statementreader.h"
#include "kit/errors.h"
#include "kit/run/bobruntime.h"
#include "kit/run/scriptplaces.h"

// Runs a source file statement by statement, up to the first error.
bool runBobFile(BobRuntime& runtime, const std::string& path);

// "FILE:LINE: in NAME" and a newline for each line of the traceback that an error would print now, as far as its place
// is known; for a syntax error the place in the source that is read.
std::string errorPlaces(BobInterp* interp, int code, ScriptPlaces& places);

struct BobCompileOptions {
  BobCodeNames names;  // empty for code without names
  bool lines = false;  // writes a line table beside the object file
};
// After an error there is no object file, or the one that was there before.
void compileBobFile(const std::string& source, const std::string& object, const BobCompileOptions& options = {});

// Calls code FILE:LINE, without folders, so that the bytes don't depend on where a file lies.
BobCodeNames codeNamesByLine(const std::string& path);

// Lists the instructions of a source or object file on the standard output stream, below the lines of the source that
// they come from, where those are known; an object file is known by its header, and has them if its line table and its
// source are there.
bool listBobFile(BobRuntime& runtime, const std::string& path, const KitWarn& warn);
