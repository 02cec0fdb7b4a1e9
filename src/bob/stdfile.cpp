// The native kind File. An instance holds the handle of a stream that the interpreter owns; no handle means closed.
#include <algorithm>

#include "bob/bob.h"

namespace {

void Adopt(BobInterp* interp, BobValue file, std::unique_ptr<BobStream> stream) {
  bobHandleOf(interp, file) = bobMakeHandle(interp, stream.get());
  interp->openStreams.push_back(std::move(stream));
}

// 0 on success; a file that is closed already fails.
int CloseFile(BobInterp* interp, BobValue file) {
  BobStream* stream = bobFileStream(interp, file);
  if (!stream) return -1;
  bobReleaseHandle(interp, bobHandleOf(interp, file));
  bobHandleOf(interp, file) = 0;
  const int result = stream->Close();
  std::erase_if(interp->openStreams, [stream](const auto& open) { return open.get() == stream; });
  return result;
}

void Finalize(BobInterp* interp, BobValue file) { CloseFile(interp, file); }

BobValue Initialize(BobInterp* interp) {
  BobValue self;
  const char *name, *mode;
  bobParse(interp, "V=*SS", interp->fileKind, &self, &name, &mode);
  std::unique_ptr<BobStream> stream = bobOpenFile(interp, name, mode);
  if (!stream) return kBobNil;
  CloseFile(interp, self);  // one that was opened before
  Adopt(interp, self, std::move(stream));
  return self;
}

BobValue Close(BobInterp* interp) {
  BobValue self;
  bobParse(interp, "V=*", interp->fileKind, &self);
  return bobBoolean(CloseFile(interp, self) == 0);
}

BobValue PutAll(BobInterp* interp, bool (*put)(BobInterp*, BobValue, BobStream*)) {
  bobCheckArgumentCount(interp, 2, INT32_MAX);
  const uint32_t* argv = interp->argv;
  if (!bobIsOfKind(interp, argv[-1], interp->fileKind)) bobRaise(interp, kBobWrongType, argv[-1]);
  BobStream* stream = bobFileStream(interp, argv[-1]);
  for (int i = 3; stream && i <= interp->argc; ++i) put(interp, argv[-i], stream);
  return kBobNil;
}

BobValue Print(BobInterp* interp) { return PutAll(interp, bobPrint); }
BobValue Display(BobInterp* interp) { return PutAll(interp, bobDisplay); }

BobValue GetC(BobInterp* interp) {
  void* stream;
  bobParse(interp, "P=*", interp->fileKind, &stream);
  const int c = stream ? static_cast<BobStream*>(stream)->GetC() : -1;
  return c == -1 ? kBobNil : bobSmall(c);
}

BobValue PutC(BobInterp* interp) {
  void* stream;
  int32_t c;
  bobParse(interp, "P=*i", interp->fileKind, &stream, &c);
  return bobBoolean(stream && static_cast<BobStream*>(stream)->PutC(c & 0xFF) != -1);
}

void BindStandard(BobInterp* interp, const char* name, BobStream* const* field) {
  const BobLocal file(interp, bobMakeNative(interp, interp->fileKind));
  Adopt(interp, file, std::make_unique<BobIndirectStream>(field));
  bobSetGlobal(&interp->scope, name, file);
}

constexpr BobMethodRow kMethods[] = {
    {"initialize", Initialize}, {"Close", Close}, {"Print", Print},
    {"Display", Display},       {"GetC", GetC},   {"PutC", PutC},
    {nullptr, nullptr},
};

}  // namespace

BobStream* bobFileStream(BobInterp* interp, BobValue file) {
  return static_cast<BobStream*>(bobNativePointer(interp, file));
}

void bobInitFileKind(BobInterp* interp) {
  interp->fileKind = bobMakeKind(interp, 0, "File", kMethods, nullptr);
  bobSetFinalizer(interp, interp->fileKind, Finalize);
  BindStandard(interp, "stdin", &interp->stdinStream);
  BindStandard(interp, "stdout", &interp->stdoutStream);
  BindStandard(interp, "stderr", &interp->stderrStream);
}
