#include "bob/lib/compilerglobals.h"

#include "bob/base/stream.h"
#include "bob/heap/interp.h"
#include "bob/heap/local.h"
#include "bob/lib/fileclass.h"
#include "bob/model/kinds.h"
#include "bob/model/signature.h"
#include "bob/run/source.h"
#include "bob/tools/objectwrite.h"

namespace {

// Writes on a File object for as long as that is open: what is being loaded may close it.
class FileObjectStream : public BobStream {
 public:
  FileObjectStream(BobInterp* interp, BobValue file) : interp(interp), file(interp, file) {}
  int PutC(int c) override {
    BobStream* stream = bobFileStream(interp, file);
    return stream ? stream->PutC(c) : -1;
  }

 private:
  BobInterp* interp;
  BobLocal file;
};

BobValue load(BobInterp* interp) {
  const char* name;
  BobValue file = kBobNil;
  bobParse(interp, "**S|V=", &name, interp->fileKind, &file);
  if (file == kBobNil) {
    BobIndirectStream echo(&interp->stdoutStream);
    bobLoadSource(&interp->scope, name, &echo);
  } else {
    FileObjectStream echo(interp, file);
    bobLoadSource(&interp->scope, name, &echo);
  }
  return kBobTrue;
}

BobValue eval(BobInterp* interp) {
  const char* text;
  int32_t length;
  bobParse(interp, "**S#", &text, &length);
  return bobEvaluate(&interp->scope, {text, size_t(length)});
}

BobValue compileFile(BobInterp* interp) {
  const char *source, *object;
  bobParse(interp, "**SS", &source, &object);
  return bobBoolean(bobCompileFile(&interp->scope, source, object));
}

constexpr BobMethodRow kFunctions[] = {
    {"Load", load}, {"Eval", eval}, {"CompileFile", compileFile}, {nullptr, nullptr}};

}  // namespace

void bobRegisterCompilerGlobals(BobInterp* interp) { bobBindFunctions(interp, kFunctions); }
