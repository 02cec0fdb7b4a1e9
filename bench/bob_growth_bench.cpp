// How the cost of the language grows: with the lines of a source, the rounds of a loop, the properties of an object,
// and the objects that a collection moves.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>
#include <utility>

#include "bob/bob.h"
#include "bob/compile/statementreader.h"

namespace {

// A runtime with the largest heap there is, in which a source has run.
class Runtime {
 public:
  explicit Runtime(const std::string& source) : interp(bobMakeInterp(262136, 0, 65536)) {
    bobRegisterGlobals(interp);
    bobInitCompiler(interp);
    BobStringInput input(source);
    worked = bobTry(interp, [&] { bobRunSource(bobRootScope(interp), &input, nullptr); });
  }
  ~Runtime() { bobDestroyInterp(interp); }
  Runtime(const Runtime&) = delete;
  Runtime& operator=(const Runtime&) = delete;

  int32_t call(const char* function) {
    int32_t result = -1;
    bobTry(interp, [&] { result = bobIntegerValue(interp, bobCallByName(bobRootScope(interp), function, {})); });
    return result;
  }

  BobInterp* const interp;
  bool worked = false;
};

// range(0): the lines of a source, compiled and not run.
void Compile(benchmark::State& state) {
  std::string source;
  for (int64_t i = 0; i < state.range(0); i += 5)
    source += "define f" + std::to_string(i) + "(a, b) {\n  local s = a * 3 + b, o;\n  while (s < 1000) s = s * 2;\n" +
              "  return o.x == s ? a : b;\n}\n";
  Runtime runtime("");
  for (auto _ : state) {
    int64_t count = 0;
    bobTry(runtime.interp, [&] {
      BobStringInput input(source);
      BobStatementReader statements(bobRootScope(runtime.interp), &input);
      while (statements.next()) ++count;
    });
    if (count != state.range(0) / 5) return state.SkipWithError("a function isn't compiled");
  }
}
BENCHMARK(Compile)->Name("compile")->Arg(20)->Arg(200)->Arg(2000)->Unit(benchmark::kMicrosecond);

// One of each program that is held against another language, in short. # stands for the rounds.
constexpr std::pair<const char*, const char*> kLoops[] = {
    {"calls",
     "define add(a, b) { return a + b; }\n"
     "define bench() { local i, s = 0; for (i = 0; i < #; i++) s = add(i, s & 1); return i; }"},
    {"closures",
     "define counter() { local n = 0; return function () { n = n + 1; return n; }; }\n"
     "define bench() { local i; for (i = 0; i < #; i++) { local c = counter(); c(); c(); } return i; }"},
    {"strings",
     "define bench() {\n  local i, s = \"\";\n  for (i = 0; i < #; i++) {\n    s = s + \"ab\";\n"
     "    if (s.size > 200) s = \"\";\n  }\n  return i;\n}"},
    {"vectors", "define bench() { local i, v = \\[]; for (i = 0; i < #; i++) v.Push(i); return v.size; }"},
    {"sends",
     "Shape = \\{ w: 3 };\ndefine Shape.area() { return this.w * this.w; }\nsquare = \\{ Shape h: 1 };\n"
     "define bench() { local i, s = 0; for (i = 0; i < #; i++) s = s + square.area() & 255; return i; }"},
    {"integers", "define bench() { local i, s = 0; for (i = 0; i < #; i++) s = (s << 1 ^ i) & 0xFFFFFF; return i; }"},
    {"mixed",
     "define bench() {\n  local i, counts = \\{ odd: 0, even: 0 }, queue = \\[];\n"
     "  local emit = function (kind) { counts[kind] = counts[kind] + 1; queue.Push(kind); };\n"
     "  for (i = 0; i < #; i++) {\n    emit(i & 1 ? \\odd : \\even);\n    if (queue.size > 20) queue.Pop();\n"
     "  }\n  return counts.odd + counts.even;\n}"},
};

const bool kLoopsRegistered = [] {
  for (const auto& [name, text] : kLoops) {
    auto* const bench = benchmark::RegisterBenchmark(
        (std::string("loop/") + name).c_str(), [text = std::string(text)](benchmark::State& state) {
          std::string source = text;
          source.replace(source.find('#'), 1, std::to_string(state.range(0)));
          Runtime runtime(source);
          for (auto _ : state)
            if (runtime.call("bench") != state.range(0)) return state.SkipWithError("not all rounds were run");
        });
    bench->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
  }
  return true;
}();

// A new object gets so many properties and is asked for each; ten statements a function, all called by one.
std::string propertiesSource(int64_t count) {
  std::string parts, calls = "define bench() {\n  local o, sum = 0;\n  o = new Object();\n";
  for (int64_t part = 0; part < (count + 9) / 10; ++part) {
    const std::string name = "part" + std::to_string(part);
    std::string sets, gets = "0";
    for (int64_t i = part * 10; i < std::min(count, part * 10 + 10); ++i) {
      const std::string property = "o.p" + std::to_string(i);
      sets += "  " + property + " = " + std::to_string(i) + ";\n";
      gets += " + " + property;
    }
    parts += "define " + name + "(o) {\n" + sets + "  return " + gets + ";\n}\n";
    calls += "  sum = sum + " + name + "(o);\n";
  }
  return parts + calls + "  return sum;\n}\n";
}

void Properties(benchmark::State& state) {
  const int64_t count = state.range(0);
  Runtime runtime(propertiesSource(count));
  for (auto _ : state)
    if (runtime.call("bench") != count * (count - 1) / 2) return state.SkipWithError("the sum is wrong");
}
BENCHMARK(Properties)->Name("properties")->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

void Collection(benchmark::State& state) {
  Runtime runtime("keep = \\[];\ndefine fill() {\n  local i;\n  for (i = 0; i < " + std::to_string(state.range(0)) +
                  "; ++i) keep.Push(\\[i, \"text\", \\{ a: i, b: 2 }]);\n  return keep.size;\n}\n");
  if (runtime.call("fill") != state.range(0)) return state.SkipWithError("the heap has no room");
  for (auto _ : state) bobCollect(runtime.interp);
}
BENCHMARK(Collection)->Name("collection")->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace
