// The runtime's start and stop: one interpreter of the player's sizes, the classes, and the language "script".
#include <utility>

#include "engine/graveyard.h"
#include "engine/language.h"
#include "engine/scriptbindings/bindings.h"
#include "engine/scriptbindings/scriptbindings.h"
#include "engine/scriptbindings/stringtable.h"
#include "host/host.h"

std::unique_ptr<ScriptRuntime> scriptRuntime;

namespace {

constexpr uint32_t kHeapBytes = 102400, kStackWords = 65536;
constexpr size_t kMaxRoots = 10;

bool readOnlyFiles = false;

// Scripts print to the message console and read nothing.
class ConsoleStream : public BobStream {
 public:
  int PutC(int c) override {
    hostPutChar(char(c));
    return c;
  }
};

ConsoleStream consoleStream;

constexpr ScriptingLanguage kScript = {scriptAttach, scriptDetach, scriptLoadFile, scriptRun};

// A file that the host has found, by the rules that hold for all files of a page.
class HostStream : public BobStream {
 public:
  explicit HostStream(HostFile* opened) : file(opened) {}
  ~HostStream() override { Close(); }
  int Close() override {
    if (HostFile* open = std::exchange(file, nullptr)) hostClose(open);
    return 0;
  }
  int GetC() override {
    uint8_t byte;
    return file && hostRead(file, &byte, 1) == 1 ? byte : -1;
  }

 private:
  HostFile* file;
};

// Files to be written have the very name that the script gives.
std::unique_ptr<BobStream> openScriptFile(const char* path, const char* mode) {
  if (std::string_view(mode).find_first_of("wa+") != std::string_view::npos)
    return readOnlyFiles ? nullptr : bobOpenPlainFile(path, mode);
  HostFile* file = hostOpen(path);
  return file ? std::make_unique<HostStream>(file) : nullptr;
}

void collectorHook(BobInterp* interp, void*) {
  for (const CollectorRoot& root : scriptRuntime->roots) root.copyRoots(interp, root.data);
  scriptCopyHandlerRoots(*scriptRuntime);
  scriptCopyTimerRoots(*scriptRuntime);
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
  bobSetStdin(interp, &consoleStream);
  bobSetStdout(interp, &consoleStream);
  bobSetStderr(interp, &consoleStream);
  bobSetRest(interp, [](BobInterp*) { hostBreathe(); });
  bobSetOpenFile(interp, openScriptFile);
  makeKova(interp);
  return defineClasses(runtime);
}

}  // namespace

int scriptRuntimeStart() {
  BobInterp* interp = bobMakeInterp(kHeapBytes, 0, kStackWords);
  if (!interp) return 0;
  scriptRuntime = std::make_unique<ScriptRuntime>();
  scriptRuntime->interp = interp;
  bool started = false;
  if (!bobTry(interp, [&] { started = start(*scriptRuntime); }) || !started || !languageRegister("script", kScript)) {
    scriptRuntimeStop();
    return 0;
  }
  return 1;
}

void scriptRuntimeStop() {
  if (!scriptRuntime) return;
  EngineCall call;
  scriptDestroyTimers(*scriptRuntime);
  scriptDestroyTargets(*scriptRuntime);
  bobDestroyInterp(scriptRuntime->interp);
  scriptRuntime.reset();
}

void bobInitCompiler() {
  if (scriptRuntime) bobTry(scriptRuntime->interp, [] { bobInitCompiler(scriptRuntime->interp); });
}

void scriptSetReadOnly(bool readOnly) { readOnlyFiles = readOnly; }

BobInterp* scriptInterp() { return scriptRuntime ? scriptRuntime->interp : nullptr; }

int scriptRegisterRoot(void (*copyRoots)(BobInterp*, void*), void* data) {
  if (!scriptRuntime || scriptRuntime->roots.size() == kMaxRoots) return 0;
  scriptRuntime->roots.push_back({copyRoots, data});
  return 1;
}
