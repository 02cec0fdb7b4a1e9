// Scopes of global variables. The parents of a scope's object are the scopes around it: a search for a global goes
// outward, a store stays in the scope itself.
#pragma once

#include <string_view>

#include "bob/base/value.h"

struct BobScope;

// The outermost scope, and the one that running code is in.
BobScope* bobRootScope(BobInterp* interp);
BobScope* bobCurrentScope(BobInterp* interp);
BobInterp* bobScopeInterp(const BobScope* scope);
BobValue bobScopeObject(const BobScope* scope);

BobScope* bobMakeScope(BobScope* parent);
void bobReleaseScope(BobScope* scope);

// The value of a global seen from the scope object: false if unbound.
bool bobFindGlobal(BobInterp* interp, BobValue scopeObject, BobValue symbol, BobValue* value);
// Binds in the scope itself.
void bobSetGlobal(BobScope* scope, std::string_view name, BobValue value);
