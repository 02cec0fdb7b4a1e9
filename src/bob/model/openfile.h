// Files that the language opens.
#pragma once

#include <memory>

#include "bob/base/stream.h"
#include "bob/base/value.h"

// The stream of a file opened through the interpreter's openFile, or null. Only modes of r, w, a with +, b and t.
std::unique_ptr<BobStream> bobOpenFile(BobInterp* interp, const char* path, const char* mode);
