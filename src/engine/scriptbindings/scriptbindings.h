// The joint between pages and their script language: what the engine and its host may ask of it.
//
// Every frame has a scope of its own, inside that of the frame around it; the top frame's lies in the root scope. What
// a script sees of the engine are wrappers, made afresh whenever one is needed. A wrapper holds a number, not a
// pointer; when its widget, target or timer goes, the number is given up, and all wrappers of it are inactive.
#pragma once

#include <cstdint>
#include <memory>

struct BobInterp;
struct BobScope;
struct EventTarget;
struct Frame;

// A frame's global scope in the language.
class ScriptScope {
 public:
  explicit ScriptScope(BobScope* s) : scope(s) {}
  ~ScriptScope();
  ScriptScope(const ScriptScope&) = delete;
  ScriptScope& operator=(const ScriptScope&) = delete;

  BobScope* const scope;
};

// Makes the interpreter and the classes, and registers the language "script"; 0 on failure.
int scriptRuntimeStart();
// Frees them and every timer and target that scripts have made. The frames must have gone.
void scriptRuntimeStop();
// The compiler, without which the console answers nothing, and the globals Load, Eval and CompileFile.
void bobInitCompiler();

// Binds "parent" and "frame" in it, and for the top frame the global "topFrame". Null on failure.
std::unique_ptr<ScriptScope> scriptScopeCreate(Frame* frame);

// Compiles and runs one statement in the frame's scope and prints its value to the console.
void consoleEvaluate(Frame* frame, const char* text, uint32_t length);

// To be called when the target is destroyed: its wrappers go inactive.
void scriptTargetGone(EventTarget* target);

// A function that copies what it holds of the heap at each collection; 0 when there are ten already.
int scriptRegisterRoot(void (*copyRoots)(BobInterp*, void* data), void* data);

// Runs an object file in the root scope; 0 if an error arrived.
int scriptLoadStartupFile(const char* path);

// From the next start of the runtime on, scripts can open files for reading only.
void scriptSetReadOnly(bool readOnly);

// The running interpreter, or null.
BobInterp* scriptInterp();
