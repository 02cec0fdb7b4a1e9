// What the engine and its host may ask of the script language.
//
// Every frame has a scope of its own, inside that of the frame around it; the top frame's lies in the root scope. What
// a script sees of the engine are wrappers, made afresh whenever one is needed. A wrapper holds a number, not a
// pointer; when its widget, target or timer goes, the number is given up, and all wrappers of it are inactive.
#pragma once

#include <cstdint>
#include <memory>

#include "engine/page/scriptscope.h"

struct BobInterp;
struct Frame;
struct ScriptRuntime;

// The sizes of the player's interpreter.
inline constexpr uint32_t kScriptHeapBytes = 102400, kScriptStackWords = 65536;

struct ScriptRuntimeDeleter {
  void operator()(ScriptRuntime* runtime) const;
};

using ScriptRuntimePtr = std::unique_ptr<ScriptRuntime, ScriptRuntimeDeleter>;

// Makes the interpreter in `place`, which the current engine's scripts are then found in, and the classes, and
// registers the language "script". False on failure, which leaves null in `place`.
bool scriptRuntimeStart(ScriptRuntimePtr& place);

// Frees them and every timer and target that scripts have made. The frames must have gone.
void scriptRuntimeStop(ScriptRuntimePtr& place);

// The compiler, without which the console answers nothing, and the globals Load, Eval and CompileFile.
void bobInitCompiler();

// Binds "parent" and "frame" in it, and for the top frame the global "topFrame". Null on failure.
std::unique_ptr<ScriptScope> scriptScopeCreate(Frame* frame);

// Compiles and runs one statement in the frame's scope and prints its value to the console.
void consoleEvaluate(Frame* frame, const char* text, uint32_t length);

// For parts of the player other than the pages: a function that copies what it holds of the heap at each collection (0
// when there are ten already), and an object file run in the root scope (0 if an error arrived).
int scriptRegisterRoot(void (*copyRoots)(BobInterp*, void* data), void* data);
int scriptLoadStartupFile(const char* path);

// The current engine's scripts and their interpreter; null before its start.
ScriptRuntime* runningScripts();
BobInterp* scriptInterp();
