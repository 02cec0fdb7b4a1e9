#include "engine/events/scripthandle.h"

#include "bob/bob.h"

void ScriptHandle::make(BobInterp* owner, void* pointer) {
  if (handle) return;
  interp = owner;
  handle = bobMakeHandle(owner, pointer);
}

void ScriptHandle::release() {
  if (handle) bobReleaseHandle(interp, handle);
  handle = 0;
}
