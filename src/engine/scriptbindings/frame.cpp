// The class Frame.
#include "engine/page/frame.h"

#include "engine/page/pageload.h"

#include "engine/scriptbindings/bindings.h"

namespace {

Frame* activeFrame(void* pointer) {
  Frame* frame = scriptFrameOf(pointer);
  if (!frame) scriptComplain(kInactiveFrame);
  return frame;
}

Frame* parseFrame(BobInterp* interp) {
  void* pointer;
  bobParse(interp, "P=*", currentScripts().frameKind, &pointer);
  return activeFrame(pointer);
}

BobValue loadPage(BobInterp* interp) {
  void* pointer;
  const char* path;
  bobParse(interp, "P=*S", currentScripts().frameKind, &pointer, &path);
  const std::string kept(path);  // the page's scripts can move the heap
  Frame* frame = activeFrame(pointer);
  return bobBoolean(frame && frameLoad(frame, kept.c_str()));
}

BobValue unloadPage(BobInterp* interp) {
  Frame* frame = parseFrame(interp);
  return bobBoolean(frame && frameUnloadAndClear(frame));
}

BobValue focus(BobInterp* interp) {
  const Frame* frame = parseFrame(interp);
  return frame && frame->focus ? scriptWrapWidget(interp, frame->focus) : kBobNil;
}

constexpr BobMethodRow kMethods[] = {
    {"LoadPage", loadPage},
    {"UnloadPage", unloadPage},
    {"Focus", focus},
    {nullptr, nullptr},
};

}  // namespace

bool scriptDefineFrame(ScriptRuntime& runtime) {
  runtime.frameKind = bobMakeKind(runtime.interp, runtime.widgetKind, "Frame", kMethods, nullptr);
  if (!runtime.frameKind) return false;
  bobSetFinalizer(runtime.interp, runtime.frameKind, scriptReleaseTarget);
  runtime.widgetTypes.emplace_back("frame", runtime.frameKind);
  return true;
}
