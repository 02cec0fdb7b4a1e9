#include "bob/model/scopes.h"

#include "bob/heap/interp.h"
#include "bob/heap/local.h"
#include "bob/model/objects.h"
#include "bob/model/properties.h"
#include "bob/model/symbols.h"
#include "bob/model/values.h"

using namespace BobLayout;

namespace {

constexpr uint32_t kScopeSize = 12;  // what the native allocator counts for a scope record

}  // namespace

BobScope* bobRootScope(BobInterp* interp) { return &interp->rootScope; }
BobScope* bobCurrentScope(BobInterp* interp) { return &interp->scope; }
BobInterp* bobScopeInterp(const BobScope* scope) { return scope->interp; }
BobValue bobScopeObject(const BobScope* scope) { return scope->object; }

BobScope* bobMakeScope(BobScope* parent) {
  BobInterp* interp = parent->interp;
  const BobValue object = bobMakeObject(interp, parent->object);
  auto* scope = new BobScope{interp, object, interp->scopes};
  interp->scopes = scope;
  interp->countNative(kScopeSize);
  return scope;
}

void bobReleaseScope(BobScope* scope) {
  BobInterp* interp = scope->interp;
  if (scope == &interp->scope || scope == &interp->rootScope) return;
  BobScope** link = &interp->scopes;
  while (*link != scope) link = &(*link)->next;
  *link = scope->next;
  interp->uncountNative(kScopeSize);
  delete scope;
}

bool bobFindGlobal(BobInterp* interp, BobValue scopeObject, BobValue symbol, BobValue* value) {
  const BobValue property = bobFindAlongParents(interp, scopeObject, symbol);
  if (!property) return false;
  *value = interp->words(property)[kValue];
  return true;
}

void bobSetGlobal(BobScope* scope, std::string_view name, BobValue value) {
  const BobLocal keep(scope->interp, value);
  const BobValue symbol = bobIntern(scope->interp, name);
  bobSetProperty(scope->interp, scope->object, symbol, keep);
}
