#include "bob/lib/fileclass.h"

#include <list>
#include <memory>

#include "bob/heap/handles.h"
#include "bob/heap/interp.h"
#include "bob/heap/local.h"
#include "bob/heap/raise.h"
#include "bob/model/kinds.h"
#include "bob/model/openfile.h"
#include "bob/model/print.h"
#include "bob/model/scopes.h"
#include "bob/model/signature.h"

namespace {

void adopt(BobInterp* interp, BobValue file, std::unique_ptr<BobStream> stream) {
  std::list<std::unique_ptr<BobStream>> opened;
  opened.push_back(std::move(stream));
  bobHandleOf(interp, file) = bobMakeHandle(interp, opened.front().get());
  interp->openStreams.splice(interp->openStreams.end(), opened);
}

// False if closing failed, as it does for a file that is closed already.
bool closeFile(BobInterp* interp, BobValue file) {
  BobStream* stream = bobFileStream(interp, file);
  if (!stream) return false;
  bobReleaseHandle(interp, bobHandleOf(interp, file));
  bobHandleOf(interp, file) = 0;
  const bool closed = stream->Close() == 0;
  std::erase_if(interp->openStreams, [stream](const auto& open) { return open.get() == stream; });
  return closed;
}

void finalize(BobInterp* interp, BobValue file) { closeFile(interp, file); }

BobValue initialize(BobInterp* interp) {
  BobValue self;
  const char *name, *mode;
  bobParse(interp, "V=*SS", interp->fileKind, &self, &name, &mode);
  std::unique_ptr<BobStream> stream = bobOpenFile(interp, name, mode);
  if (!stream) return kBobNil;
  closeFile(interp, self);  // one that was opened before
  adopt(interp, self, std::move(stream));
  return self;
}

BobValue close(BobInterp* interp) {
  BobValue self;
  bobParse(interp, "V=*", interp->fileKind, &self);
  return bobBoolean(closeFile(interp, self));
}

BobValue putAll(BobInterp* interp, bool (*put)(BobInterp*, BobValue, BobStream*)) {
  bobCheckArgumentCount(interp, 2);
  const uint32_t* argv = interp->argv;
  if (!bobIsOfKind(interp, argv[-1], interp->fileKind)) bobRaise(interp, kBobWrongType, argv[-1]);
  BobStream* stream = bobFileStream(interp, argv[-1]);
  for (int i = 3; stream && i <= interp->argc; ++i) put(interp, argv[-i], stream);
  return kBobNil;
}

BobValue print(BobInterp* interp) { return putAll(interp, bobPrint); }
BobValue display(BobInterp* interp) { return putAll(interp, bobDisplay); }

BobValue getC(BobInterp* interp) {
  void* stream;
  bobParse(interp, "P=*", interp->fileKind, &stream);
  const int c = stream ? static_cast<BobStream*>(stream)->GetC() : -1;
  return c == -1 ? kBobNil : bobSmall(c);
}

BobValue putC(BobInterp* interp) {
  void* stream;
  int32_t c;
  bobParse(interp, "P=*i", interp->fileKind, &stream, &c);
  return bobBoolean(stream && static_cast<BobStream*>(stream)->PutC(c & 0xFF) != -1);
}

void bindStandard(BobInterp* interp, const char* name, BobStream* const* field) {
  const BobLocal file(interp->locals, bobMakeNative(interp, interp->fileKind));
  adopt(interp, file, std::make_unique<BobIndirectStream>(field));
  bobSetGlobal(&interp->scope, name, file);
}

constexpr BobMethodRow kMethods[] = {
    {"initialize", initialize}, {"Close", close}, {"Print", print},
    {"Display", display},       {"GetC", getC},   {"PutC", putC},
    {nullptr, nullptr},
};

}  // namespace

BobStream* bobFileStream(BobInterp* interp, BobValue file) {
  return static_cast<BobStream*>(bobNativePointer(interp, file));
}

BobStream* bobOutputFor(BobInterp* interp, BobValue file) {
  return file == kBobNil ? interp->stdoutStream : bobFileStream(interp, file);
}

void bobInitFileKind(BobInterp* interp) {
  interp->fileKind = bobMakeKind(interp, 0, "File", kMethods, nullptr);
  bobSetFinalizer(interp, interp->fileKind, finalize);
  bindStandard(interp, "stdin", &interp->stdinStream);
  bindStandard(interp, "stdout", &interp->stdoutStream);
  bindStandard(interp, "stderr", &interp->stderrStream);
}
