#include "kpg/bobcommands.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "bob/bob.h"
#include "bob/compile/statementreader.h"
#include "kpg/bobruntime.h"

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

[[noreturn]] void Fail() { throw CLI::RuntimeError(1); }

[[noreturn]] void CannotOpen(const std::string& path) {
  std::fprintf(stderr, "kpg: can't open '%s'\n", path.c_str());
  Fail();
}

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

void addBobCommands(CLI::App& app) {
  // What the options are read into lives as long as their callbacks.
  struct Arguments {
    std::vector<std::string> list;
    std::string file, output;
  };
  const auto command = [&app](const char* name, const char* about) {
    return std::pair(app.add_subcommand(name, about), std::make_shared<Arguments>());
  };

  auto [run, runArguments] = command("run", "Run source files, statement by statement; exit status 1 after an error");
  run->add_option("FILE", runArguments->list, "source files, run one after the other in one interpreter")->required();
  run->callback([a = runArguments] { Run(a->list); });

  auto [eval, evalArguments] = command("eval", "Evaluate each TEXT as a console line, in one interpreter");
  eval->add_option("TEXT", evalArguments->list, "one statement each")->required();
  eval->callback([a = evalArguments] { Eval(a->list); });

  auto [compile, compileArguments] = command("compile", "Compile a source file to an object file");
  compile->add_option("IN", compileArguments->file, "source file")->required();
  compile->add_option("-o,--output", compileArguments->output, "object file")->required();
  compile->callback([a = compileArguments] { Compile(a->file, a->output); });

  auto [decode, decodeArguments] = command("decode", "Print the instructions of a source or object file");
  decode->add_option("FILE", decodeArguments->file, "source or object file")->required();
  decode->callback([a = decodeArguments] { DecodeFile(a->file); });
}
