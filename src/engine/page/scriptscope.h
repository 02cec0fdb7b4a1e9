// A frame's global scope in the script language, released with the frame.
#pragma once

struct BobScope;

class ScriptScope {
 public:
  explicit ScriptScope(BobScope* s) : scope(s) {}
  ~ScriptScope();
  ScriptScope(const ScriptScope&) = delete;
  ScriptScope& operator=(const ScriptScope&) = delete;

  BobScope* const scope;
};
