// The runtime's start and stop: one interpreter of the player's sizes, the classes, and the language "script".
#include <utility>

#include "engine/base/hostfile.h"
#include "engine/events/graveyard.h"
#include "engine/page/language.h"
#include "engine/scriptbindings/bindings.h"
#include "engine/scriptbindings/scriptbindings.h"
#include "engine/scriptbindings/stringtable.h"
#include "host/host.h"

namespace {

constexpr size_t kMaxRoots = 10;

constexpr ScriptingLanguage kScript = {scriptAttach, scriptDetach, scriptLoadFile, scriptRun};

// A file that the host has found, by the rules that hold for all files of a page.
class HostStream : public BobStream {
 public:
  explicit HostStream(HostFilePtr opened) : file(std::move(opened)) {}
  int Close() override {
    file.reset();
    return 0;
  }
  int GetC() override {
    uint8_t byte;
    return file && hostRead(file.get(), &byte, 1) == 1 ? byte : -1;
  }

 private:
  HostFilePtr file;
};

// A file of the disk, in which the host counts what is written. One that it refuses to take more is like a full disk.
class WrittenStream : public BobStream {
 public:
  explicit WrittenStream(std::unique_ptr<BobStream> opened) : file(std::move(opened)) {}
  int Close() override { return file->Close(); }
  int GetC() override { return file->GetC(); }
  int PutC(int c) override { return hostLetsScriptWrite(1) ? file->PutC(c) : -1; }

 private:
  std::unique_ptr<BobStream> file;
};

// Files to be written have exactly the name that the script asks for.
std::unique_ptr<BobStream> openScriptFile(const char* path, const char* mode) {
  const bool writes = std::string_view(mode).find_first_of("wa+") != std::string_view::npos;
  if (!std::exchange(currentScripts().opensPageFile, false) && !hostLetsScriptOpen(path, writes)) return nullptr;
  if (writes) {
    std::unique_ptr<BobStream> opened = bobOpenPlainFile(hostFullName(path).c_str(), mode);
    return opened ? std::make_unique<WrittenStream>(std::move(opened)) : nullptr;
  }
  HostFilePtr file = openHostFile(path);
  return file ? std::make_unique<HostStream>(std::move(file)) : nullptr;
}

void collectorHook(BobInterp* interp, void*) {
  ScriptRuntime& scripts = currentScripts();
  for (const CollectorRoot& root : scripts.roots) root.copyRoots(interp, root.data);
  scriptCopyHandlerRoots(scripts);
  scriptCopyTimerRoots(scripts);
}

// The hook for what pages of a session share. One reference stays on the stack for good.
void makeKova(BobInterp* interp) {
  const BobValue kova = bobMakeClass(interp, "KOVA", bobObjectClass(interp), nullptr);
  bobKeepOnStack(interp, kova);
}

bool defineClasses(ScriptRuntime& runtime) {
  return scriptDefineTarget(runtime) && scriptDefineEvents(runtime) && scriptDefineWidget(runtime) &&
         scriptDefineFrame(runtime) && scriptDefineTextStyle(runtime) && scriptDefineTimer(runtime) &&
         scriptDefineStringTable(runtime);
}

bool start(ScriptRuntime& runtime) {
  BobInterp* interp = runtime.interp;
  bobRegisterGlobals(interp);
  bobSetGcHook(interp, collectorHook, nullptr);
  bobSetStdin(interp, &runtime.console);
  bobSetStdout(interp, &runtime.console);
  bobSetStderr(interp, &runtime.console);
  bobSetRest(interp, [](BobInterp*) { hostBreathe(); });
  bobSetOpenFile(interp, openScriptFile);
  makeKova(interp);
  return defineClasses(runtime);
}

}  // namespace

int ConsoleStream::PutC(int c) {
  hostPutChar(char(c));
  return c;
}

void ScriptRuntimeDeleter::operator()(ScriptRuntime* runtime) const { delete runtime; }

bool scriptRuntimeStart(ScriptRuntimePtr& place) {
  place.reset(new ScriptRuntime);
  BobInterp* const interp = place->interp = bobMakeInterp(kScriptHeapBytes, 0, kScriptStackWords);
  bool started = false;
  if (interp && bobTry(interp, [&] { started = start(*place); }) && started && languageRegister("script", kScript))
    return true;
  scriptRuntimeStop(place);
  return false;
}

void scriptRuntimeStop(ScriptRuntimePtr& place) {
  if (!place) return;
  EngineCall call;
  scriptDestroyTimers(*place);
  scriptDestroyTargets(*place);
  bobDestroyInterp(place->interp);
  place.reset();
}

void bobInitCompiler() {
  if (BobInterp* interp = scriptInterp()) bobTry(interp, [interp] { bobInitCompiler(interp); });
}

BobInterp* scriptInterp() {
  const ScriptRuntime* scripts = runningScripts();
  return scripts ? scripts->interp : nullptr;
}

int scriptRegisterRoot(void (*copyRoots)(BobInterp*, void*), void* data) {
  if (!scriptInterp() || currentScripts().roots.size() == kMaxRoots) return 0;
  currentScripts().roots.push_back({copyRoots, data});
  return 1;
}
