// Memory that runs out in the language alone: what was asked for fails, and the interpreter goes on.
#include <filesystem>
#include <fstream>

#include "bob/session.h"

#include "faults/eachfails.h"
#include "support/temporaryfolder.h"

namespace {

constexpr char kProgram[] = R"(
define fib(n) { return n < 2 ? n : fib(n - 1) + fib(n - 2); }
fib(7);
Stack = new Object();
Stack.items = new Vector();
define Stack.push(x) { items.Push(x); return this; }
Stack.push(1).push("two");
define each(v, f) { local i; for (i = 0; i < v.size; ++i) f(v[i]); }
s = "";
each(\[1, 2.5, "three", four], function (x) { s = s + toString(x); });
switch (3) { case 1: x = 1; break; case 3: x = 3; break; default: x = 0; }
f = new File("out.txt", "w");
f.Display("some ", 12, " text");
f.Close();
f = new File("out.txt", "r");
for (i = 0; i < 30; i++) { s = s + "more and more of a text that has to be collected"; s.size; }
gc();
)";

// The first is a syntax error, the second stops the function that calls it.
constexpr const char* kLines[] = {"fib(;",
                                  "Stack.push(no.such);",
                                  "CompileFile(\"source.bob\", \"object.bobo\");",
                                  "LoadObjectFile(\"object.bobo\");",
                                  "Load(\"source.bob\");",
                                  "Eval(\"loaded(4)();\");",
                                  "f.GetC();"};

void live(Session& session) {
  session.run(kProgram);
  for (const char* line : kLines) session.eval(line);
}

TEST(LanguageFaultsTest, AnInterpreterOutlivesWhatFindsNone) {
  const TemporaryFolder folder;
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  std::ofstream("source.bob") << "define loaded(x) { return function () { return x; }; }\nloaded(4)();\n";
  // One that lives through it all, and one that is made each time.
  Session lasting(20000, 4096);
  live(lasting);
  eachFails<FailingAllocation>(
      7,
      [&] {
        live(lasting);
        const std::unique_ptr<BobInterp, void (*)(BobInterp*)> own(bobMakeInterp(20000, 0, 4096), bobDestroyInterp);
        if (!own) return;
        bobTry(own.get(), [&] {
          bobRegisterGlobals(own.get());
          bobInitCompiler(own.get());
        });
      },
      [&] {
        lasting.out.take();
        lasting.err.take();
        ASSERT_EQ(lasting.eval("define twice(x) { return x + x; }"), "--> <Method-twice>\n");
        ASSERT_EQ(lasting.eval("twice(\"a\");"), "--> \"aa\"\n");
        ASSERT_EQ(lasting.eval("{ local i, n = 0; for (i = 0; i < 20; i++) n = n + twice(new Object() ? i : 0); n; }"),
                  "--> 380\n");
        ASSERT_EQ(bobMemory(lasting.interp).stackUsed, 0u);
      });
  std::filesystem::current_path(before);
}

}  // namespace
