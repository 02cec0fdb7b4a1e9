// kpg run, eval, compile, decode: the language without a page.

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "bob/bob.h"
#include "bob/compile/statementreader.h"
#include "kpg/bobruntime.h"
#include "kpg/commands.h"
#include "kpg/errors.h"

namespace {

// What the language writes, on one of the C library's streams.
class OutputStream : public BobStream {
 public:
  explicit OutputStream(FILE* file) : file(file) {}
  int PutC(int c) override { return std::fputc(c, file); }

 private:
  FILE* file;
};

class InputStream : public BobStream {
 public:
  int GetC() override { return std::fgetc(stdin); }
};

// The language on the C library's streams.
struct Runtime : BobRuntime {
  Runtime() {
    bobSetStdin(interp, &in);
    bobSetStdout(interp, &out);
    bobSetStderr(interp, &err);
  }

  InputStream in;
  OutputStream out{stdout}, err{stderr};
};

// The language has reported the error.
[[noreturn]] void Fail() { throw CommandError(""); }

[[noreturn]] void CannotOpen(const std::string& path) { throw CommandError("kpg: can't open '" + path + "'"); }

void Run(const std::vector<std::string>& paths) {
  Runtime runtime;
  bool ok = true;
  for (const std::string& path : paths) {
    const std::unique_ptr<BobStream> source = bobOpenFile(runtime.interp, path.c_str(), "r");
    if (!source) CannotOpen(path);
    ok = bobTry(runtime.interp, [&] { bobRunSource(bobRootScope(runtime.interp), source.get(), nullptr); }) && ok;
  }
  if (!ok) Fail();
}

void Eval(const std::vector<std::string>& texts) {
  Runtime runtime;
  for (const std::string& text : texts) bobConsoleEvaluate(bobRootScope(runtime.interp), text);
}

void Compile(const std::string& source, const std::string& object) {
  Runtime runtime;
  BobInterp* interp = runtime.interp;
  if (!bobOpenFile(interp, source.c_str(), "r")) CannotOpen(source);
  bool made = false;
  if (!bobTry(interp, [&] { made = bobCompileFile(bobRootScope(interp), source.c_str(), object.c_str()); })) Fail();
  if (!made) CannotOpen(object);
}

bool DecodeSource(BobInterp* interp, BobStream* stream) {
  return bobTry(interp, [&] {
    BobStatementReader statements(bobRootScope(interp), stream);
    while (const BobValue method = statements.next()) bobListCode(interp, bobMethodCode(interp, method));
  });
}

// An object file is known by its header.
void DecodeFile(const std::string& path) {
  Runtime runtime;
  std::unique_ptr<BobStream> stream = bobOpenFile(runtime.interp, path.c_str(), "rb");
  if (!stream) CannotOpen(path);
  bool isObject = true;
  for (char c : {'B', 'O', 'B', 'O', '\0', '\0', '\0', '\4'}) isObject = isObject && stream->GetC() == c;
  if (!isObject) stream = bobOpenFile(runtime.interp, path.c_str(), "r");
  if (!stream) CannotOpen(path);
  const bool ok = isObject ? bobListRecords(runtime.interp, stream.get()) : DecodeSource(runtime.interp, stream.get());
  if (!ok) Fail();
}

}  // namespace

void addBobCommands(CommandLine& line) {
  struct Arguments {
    std::vector<std::string> list;
    std::string file, output;
  };
  const auto arguments = std::make_shared<Arguments>();  // one for all, since only one command runs

  KpgCommand run = line.command("run", "Run source files, statement by statement; exit status 1 after an error");
  run.add("FILE", arguments->list, "source files, run one after the other in one interpreter").required();
  run.runs([arguments] { Run(arguments->list); });

  KpgCommand eval = line.command("eval", "Evaluate each TEXT as a console line, in one interpreter");
  eval.add("TEXT", arguments->list, "one statement each").required();
  eval.runs([arguments] { Eval(arguments->list); });

  KpgCommand compile = line.command("compile", "Compile a source file to an object file");
  compile.add("IN", arguments->file, "source file").required();
  compile.add("-o,--output", arguments->output, "object file").required();
  compile.runs([arguments] { Compile(arguments->file, arguments->output); });

  KpgCommand decode = line.command("decode", "Print the instructions of a source or object file");
  decode.add("FILE", arguments->file, "source or object file").required();
  decode.runs([arguments] { DecodeFile(arguments->file); });
}
