// The joint between pages and their script language.
#pragma once

#include <cstdint>
#include <memory>

struct Frame;

// A frame's global scope in the language.
class ScriptScope {};

int scriptRuntimeStart();  // registers the language "script"; 0 on failure
void scriptRuntimeStop();
void bobInitCompiler();

std::unique_ptr<ScriptScope> scriptScopeCreate(Frame* frame);  // null on failure

// Compiles and runs one statement in the frame's scope and prints its value to the console.
void consoleEvaluate(Frame* frame, const char* text, uint32_t length);
