// The language without a page: running, compiling and listing files.
//
// What a program writes goes to the streams of the runtime, errors of the language included; false means that such an
// error has been reported there. A file that can't be opened is a KitError.
#pragma once

#include <string>

#include "bob/compile/statementreader.h"
#include "kit/run/bobruntime.h"

// Runs a source file statement by statement, up to the first error.
bool runBobFile(BobRuntime& runtime, const std::string& path);

// After an error there is no object file, or the one that was there before. `names` may be empty, for code without
// names.
bool compileBobFile(BobRuntime& runtime, const std::string& source, const std::string& object,
                    const BobCodeNames& names = {});

// Calls code FILE:LINE, without folders, so that the bytes don't depend on where a file lies.
BobCodeNames codeNamesByLine(const std::string& path);

// Lists the instructions of a source or object file on the standard output stream; an object file is known by its
// header.
bool listBobFile(BobRuntime& runtime, const std::string& path);
