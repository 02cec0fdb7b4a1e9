// Object files and running source.
//
// An object file is the bytes "BOBO", a version and one record for each top-level statement: its code as a value.
// All numbers are big-endian; bytecode travels unchanged. A stream of records without the header is what a page keeps.
#pragma once

#include <string_view>

#include "bob/interp.h"

constexpr uint32_t kBobObjectVersion = 4;

// -- loading: runs each record as it is read. A truncated record ends the load as the end of the file does.

// Raises error 17, 21 or 22 if the file isn't one; false if an error arrived while a record ran.
bool bobLoadObjectFile(BobScope* scope, const char* path);
// The same over a stream that stands at its first record.
bool bobLoadObjectStream(BobScope* scope, BobStream* stream);
// Reads one value: false when the stream ends too early or holds something unknown.
bool bobReadValue(BobScope* scope, BobStream* stream, BobValue* value);

// -- writing

bool bobWriteHeader(BobStream* stream);
// False if the stream refuses, or if a value is met that can't be written.
bool bobWriteValue(BobInterp* interp, BobValue value, BobStream* stream);
// False if a file can't be opened or the header not be written; raises what the compiler raises.
bool bobCompileFile(BobScope* scope, const char* source, const char* object);
// Writes the first statement of the text as a record, without a header.
void bobCompileText(BobScope* scope, std::string_view text, BobStream* stream);

// -- running source

// Statement by statement, each one run before the next is read; `echo` gets each value and a newline, unless null.
void bobRunSource(BobScope* scope, BobStream* source, BobStream* echo);
// Raises error 17 if the file can't be opened.
void bobLoadSource(BobScope* scope, const char* path, BobStream* echo);
// The first statement of the text: its value, or nil if there is none.
BobValue bobEvaluate(BobScope* scope, std::string_view text);

// The stream of a file opened through the interpreter's openFile, or null. Only modes of r, w, a with +, b and t.
std::unique_ptr<BobStream> bobOpenFile(BobInterp* interp, const char* path, const char* mode);

// The rows of Load, Eval and CompileFile, for globals.
extern const BobMethodRow kBobCompilerFunctions[];
