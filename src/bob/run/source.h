// Running source text, statement by statement, each one run before the next is read.
#pragma once

#include <string>
#include <string_view>

#include "bob/base/stream.h"
#include "bob/base/value.h"

struct BobScope;

// `echo` gets each value and a newline, unless null. `name` is what notes of the compiler call the source.
void bobRunSource(BobScope* scope, BobStream* source, BobStream* echo, const std::string& name = {});
// Raises error 17 if the file can't be opened.
void bobLoadSource(BobScope* scope, const char* path, BobStream* echo);
// The first statement of the text: its value, or nil if there is none.
BobValue bobEvaluate(BobScope* scope, std::string_view text);
// The same for a console line: prints "--> ", the value and a newline on stdoutStream. After an error it prints no
// value and returns false.
bool bobConsoleEvaluate(BobScope* scope, std::string_view text);
