// Running source: Load, Eval, CompileFile, and the console line.
#include <algorithm>

#include "bob/bob.h"
#include "bob/compile/statementreader.h"

void bobRunSource(BobScope* scope, BobStream* source, BobStream* echo) {
  BobInterp* interp = scope->interp;
  BobStatementReader statements(scope, source);
  while (const BobValue method = statements.next()) {
    const BobValue value = bobCall(scope, method, {});
    if (!echo) continue;
    bobPrint(interp, value, echo);
    bobPutText(echo, "\n");
  }
}

void bobLoadSource(BobScope* scope, const char* path, BobStream* echo) {
  const std::string name = path;  // the path may lie in the heap
  const std::unique_ptr<BobStream> source = bobOpenFile(scope->interp, name.c_str(), "r");
  if (!source) bobRaiseText(scope->interp, kBobFileNotFound, name.c_str());
  bobRunSource(scope, source.get(), echo);
}

BobValue bobEvaluate(BobScope* scope, std::string_view text) {
  BobStringCopyInput input(text);
  BobStatementReader statements(scope, &input);
  const BobValue method = statements.next();
  return method ? bobCall(scope, method, {}) : kBobNil;
}

bool bobConsoleEvaluate(BobScope* scope, std::string_view text) {
  BobInterp* interp = scope->interp;
  return bobTry(interp, [&] {
    const BobLocal value(interp, bobEvaluate(scope, text));
    bobPutText(interp->stdoutStream, "--> ");
    bobPrint(interp, value, interp->stdoutStream);
    bobPutText(interp->stdoutStream, "\n");
  });
}

std::unique_ptr<BobStream> bobOpenFile(BobInterp* interp, const char* path, const char* mode) {
  const std::string_view letters(mode);
  const bool known = !letters.empty() && std::string_view("rwa").find(letters[0]) != std::string_view::npos &&
                     letters.find_first_not_of("b+t", 1) == std::string_view::npos;
  return known ? interp->openFile(path, mode) : nullptr;
}

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

BobValue Load(BobInterp* interp) {
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

BobValue Eval(BobInterp* interp) {
  const char* text;
  int32_t length;
  bobParse(interp, "**S#", &text, &length);
  return bobEvaluate(&interp->scope, {text, size_t(length)});
}

BobValue CompileFile(BobInterp* interp) {
  const char *source, *object;
  bobParse(interp, "**SS", &source, &object);
  return bobBoolean(bobCompileFile(&interp->scope, source, object));
}

}  // namespace

const BobMethodRow kBobCompilerFunctions[] = {
    {"Load", Load}, {"Eval", Eval}, {"CompileFile", CompileFile}, {nullptr, nullptr}};
