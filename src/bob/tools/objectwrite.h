// Writing object files.
#pragma once

#include <string_view>

#include "bob/base/stream.h"
#include "bob/base/value.h"

struct BobScope;

bool bobWriteHeader(BobStream* stream);
// False if the stream refuses, or if a value is met that can't be written.
bool bobWriteValue(BobInterp* interp, BobValue value, BobStream* stream);
// False if a file can't be opened or the header not be written; raises what the compiler raises.
bool bobCompileFile(BobScope* scope, const char* source, const char* object);
// Writes the first statement of the text as a record, without a header: for a host that keeps single scripts.
void bobCompileText(BobScope* scope, std::string_view text, BobStream* stream);
