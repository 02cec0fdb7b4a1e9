// The language against Lua 5.4: eight programs that do the same work in both, run alternately, and the
// geometric mean of the ratios. Also what a full collection of a full heap takes.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "bob/bob.h"
#include "peers/luapeer.h"

namespace {

constexpr int kRounds = 15;

double Seconds() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

std::string ReadFile(const std::string& path) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

BobInterp* MakeRuntime() {
  BobInterp* interp = bobMakeInterp(102400, 0, 65536);
  bobRegisterGlobals(interp);
  bobInitCompiler(interp);
  return interp;
}

class BobProgram {
 public:
  explicit BobProgram(const std::string& source) : interp(MakeRuntime()) {
    BobStringInput input(source);
    bobTry(interp, [&] { bobRunSource(bobRootScope(interp), &input, nullptr); });
  }
  ~BobProgram() { bobDestroyInterp(interp); }
  int32_t run() {
    int32_t result = -1;
    bobTry(interp, [&] { result = bobIntegerValue(interp, bobCallByName(bobRootScope(interp), "bench", {})); });
    return result;
  }

 private:
  BobInterp* interp;
};

// The best of some rounds each, alternating, so that both meet the same machine.
double Compare(const std::string& name) {
  BobProgram bob(ReadFile(std::string(BENCH_DIR) + "/bob/" + name + ".bob"));
  LuaProgram lua(ReadFile(std::string(BENCH_DIR) + "/peers/lua/" + name + ".lua"));
  double bobBest = 1e9, luaBest = 1e9;
  int32_t bobResult = 0, luaResult = 0;
  for (int round = 0; round < kRounds; ++round) {
    const double start = Seconds();
    bobResult = bob.run();
    const double middle = Seconds();
    luaResult = lua.run();
    bobBest = std::min(bobBest, middle - start);
    luaBest = std::min(luaBest, Seconds() - middle);
  }
  const double ratio = bobBest / luaBest;
  std::printf("%-11s bob %8.3f ms   lua %8.3f ms   ratio %.2f%s\n", name.c_str(), bobBest * 1e3, luaBest * 1e3, ratio,
              bobResult == luaResult ? "" : "   RESULTS DIFFER");
  if (bobResult != luaResult) std::printf("            %d and %d\n", bobResult, luaResult);
  return ratio;
}

// A heap filled with small vectors, strings and objects until little is left.
void MeasureCollection() {
  BobInterp* interp = MakeRuntime();
  bobTry(interp, [&] {
    bobEvaluate(bobRootScope(interp),
                "{ keep = \\[]; for (i = 0; i < 1100; i++) keep.Push(\\[i, \"text\", \\{ a: i, b: 2 }]); }");
    bobCollect(interp);
  });
  double best = 1e9;
  for (int round = 0; round < 50; ++round) {
    const double start = Seconds();
    bobCollect(interp);
    best = std::min(best, Seconds() - start);
  }
  std::printf("collection of %u live bytes: %.0f us\n", bobMemory(interp).heapBytes, best * 1e6);
  bobDestroyInterp(interp);
}

}  // namespace

int main() {
  const char* const programs[] = {"calls",      "closures", "strings",  "vectors",
                                  "properties", "sends",    "integers", "mixed"};
  double sum = 0;
  for (const char* name : programs) sum += std::log(Compare(name));
  std::printf("geometric mean of the ratios: %.2f\n", std::exp(sum / std::size(programs)));
  MeasureCollection();
  return 0;
}
