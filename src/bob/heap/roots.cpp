#include "bob/heap/roots.h"

#include "bob/heap/interp.h"
#include "bob/heap/local.h"
#include "bob/heap/tracer.h"

namespace {

constexpr uint32_t kProtectedBlockSize = 4 * 102;  // what the native allocator counts for a block: 100 entries, 2 words

}  // namespace

void bobProtect(BobInterp* interp, BobValue* variable) {
  *variable = kBobNil;
  auto& blocks = interp->protectedBlocks;
  for (auto block = blocks.rbegin(); block != blocks.rend(); ++block) {
    if ((*block)->count == 100) continue;
    (*block)->variables[(*block)->count++] = variable;
    return;
  }
  blocks.push_back(std::make_unique<BobProtectedBlock>());
  interp->countNative(kProtectedBlockSize);
  blocks.back()->variables[blocks.back()->count++] = variable;
}

bool bobUnprotect(BobInterp* interp, BobValue* variable) {
  for (const auto& block : interp->protectedBlocks) {
    for (int i = 0; i < block->count; ++i) {
      if (block->variables[i] != variable) continue;
      for (--block->count; i < block->count; ++i) block->variables[i] = block->variables[i + 1];
      return true;
    }
  }
  return false;
}

void bobCopyRoots(BobInterp* interp) {
  const auto copy = [interp](BobValue& root) { root = interp->moved(root); };
  copy(interp->symbolTable);
  copy(interp->objectClass);
  for (BobScope* s = interp->scopes; s; s = s->next) copy(s->object);
  for (BobValue* root : {&interp->methodClass, &interp->vectorClass, &interp->symbolClass, &interp->stringClass,
                         &interp->integerClass, &interp->floatClass})
    copy(*root);
  for (uint32_t type = interp->typeList; type; type = interp->record(type)->nextType)
    if (interp->record(type)->classObject) copy(interp->record(type)->classObject);
  for (const auto& block : interp->protectedBlocks)
    for (int i = 0; i < block->count; ++i) copy(*block->variables[i]);
  for (BobSavedRegisters* s = interp->saveTop; s; s = s->next) {
    copy(s->scope);
    copy(s->env);
    if (s->code) copy(s->code);
  }
  for (BobLocal* local = interp->locals; local; local = local->next) copy(local->value);
  if (interp->tracer) interp->tracer->copyValues(interp);
}
