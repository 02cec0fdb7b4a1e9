#include "engine/page/scriptscope.h"

#include "bob/bob.h"

ScriptScope::~ScriptScope() { bobReleaseScope(scope); }
