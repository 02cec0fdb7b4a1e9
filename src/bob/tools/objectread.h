// Loading object files: each record runs as soon as it has been read. A truncated record ends the load as the end of
// the file does.
#pragma once

#include <string>
#include <string_view>

#include "bob/base/stream.h"
#include "bob/base/value.h"

struct BobScope;

// Raises error 17, 21 or 22 if the file isn't one; false if an error arrived while a record ran.
bool bobLoadObjectFile(BobScope* scope, const char* path);
// The same over a stream that is at its first record.
bool bobLoadObjectStream(BobScope* scope, BobStream* stream);
// The name of the code in the first record of such a stream; empty for none. Makes nothing.
std::string bobObjectStreamName(std::string_view records);
// Reads one value: false when the stream ends too early or holds something unknown.
bool bobReadValue(BobScope* scope, BobStream* stream, BobValue* value);
