// The language against Lua 5.4: eight programs that do the same work in both, run alternately, and the geometric mean
// of the ratios; the same source of 2,000 lines, compiled in both; and what a full collection of a full heap takes.
//
//   bob_bench [NAME...]    only these: the programs, compile, collect
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <sstream>
#include <string>

#include "bob/bob.h"
#include "bob/compile/statementreader.h"
#include "peers/luapeer.h"

namespace {

constexpr int kRounds = 15;

bool resultsDiffer = false;

// Of this process’s processor: a busy machine’s other work doesn’t count.
double Seconds() { return double(std::clock()) / CLOCKS_PER_SEC; }

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

// Prints the best time of some rounds each, alternating, so that both meet the same machine. Each returns a number that
// shows what it has done. The ratio.
template <typename RunBob, typename RunLua>
double Alternate(const std::string& name, RunBob runBob, RunLua runLua) {
  double bobBest = 1e9, luaBest = 1e9;
  int32_t bobResult = 0, luaResult = 0;
  for (int round = 0; round < kRounds; ++round) {
    const double start = Seconds();
    bobResult = runBob();
    const double middle = Seconds();
    luaResult = runLua();
    bobBest = std::min(bobBest, middle - start);
    luaBest = std::min(luaBest, Seconds() - middle);
  }
  const double ratio = bobBest / luaBest;
  std::printf("%-11s bob %8.3f ms   lua %8.3f ms   ratio %.2f%s\n", name.c_str(), bobBest * 1e3, luaBest * 1e3, ratio,
              bobResult == luaResult ? "" : "   RESULTS DIFFER");
  if (bobResult != luaResult) {
    std::printf("            %d and %d\n", bobResult, luaResult);
    resultsDiffer = true;
  }
  return ratio;
}

double Compare(const std::string& name) {
  BobProgram bob(ReadFile(std::string(BENCH_DIR) + "/bob/" + name + ".bob"));
  LuaProgram lua(ReadFile(std::string(BENCH_DIR) + "/peers/lua/" + name + ".lua"));
  return Alternate(
      name, [&] { return bob.run(); }, [&] { return lua.run(); });
}

// -- compiling

// A function in ten lines, in both languages; # stands for its number.
constexpr std::pair<const char*, const char*> kFunction[] = {
    {"define f#(a, b) {", "function f#(a, b)"},
    {"  local s = a * # + b, o;", "  local s, o = a * # + b"},
    {"  if (s > 100 && b != 3) s = s - (a & 7);", "  if s > 100 and b ~= 3 then s = s - (a & 7) end"},
    {"  while (s < 1000) { s = s * 2; a = a + 1; }", "  while s < 1000 do s = s * 2; a = a + 1 end"},
    {"  o = \\{ x: s, y: \"text #\" };", "  o = { x = s, y = \"text #\" }"},
    {"  o.x = o.x + f#(a - 1, s) % 16;", "  o.x = o.x + f#(a - 1, s) % 16"},
    {"  table[s & 3] = o.y;", "  table[s & 3] = o.y"},
    {"  o.move(a, b + 1);", "  o:move(a, b + 1)"},
    {"  return o.x == s ? a : b;", "  return o.x == s and a or b"},
    {"}", "end"},
};
constexpr int kFunctions = 200;

std::string MakeSource(bool isBob) {
  std::string source;
  for (int i = 0; i < kFunctions; ++i) {
    for (const auto& [bob, lua] : kFunction) {
      for (const char* c = isBob ? bob : lua; *c; ++c) source += *c == '#' ? std::to_string(i) : std::string(1, *c);
      source += '\n';
    }
  }
  return source;
}

// Both return the number of functions when all of them could be compiled. Neither runs anything.
void CompareCompiling() {
  const std::string bobSource = MakeSource(true), luaSource = MakeSource(false);
  BobInterp* interp = MakeRuntime();
  lua_State* state = luaL_newstate();
  Alternate(
      "compile",
      [&] {
        int32_t count = 0;
        bobTry(interp, [&] {
          BobStringInput input(bobSource);
          BobStatementReader statements(bobRootScope(interp), &input);
          while (statements.next()) ++count;
        });
        return count;
      },
      [&] {
        const bool ok = luaL_loadstring(state, luaSource.c_str()) == LUA_OK;
        lua_settop(state, 0);
        return ok ? kFunctions : 0;
      });
  lua_close(state);
  bobDestroyInterp(interp);
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

int main(int argc, char** argv) {
  const auto isWanted = [&](const char* name) {
    return argc == 1 || std::any_of(argv + 1, argv + argc, [&](const char* a) { return std::string(a) == name; });
  };
  const char* const programs[] = {"calls",      "closures", "strings",  "vectors",
                                  "properties", "sends",    "integers", "mixed"};
  double sum = 0;
  int count = 0;
  for (const char* name : programs)
    if (isWanted(name)) sum += std::log(Compare(name)), ++count;
  if (count > 0) std::printf("geometric mean of the ratios: %.2f\n", std::exp(sum / count));
  if (isWanted("compile")) CompareCompiling();
  if (isWanted("collect")) MeasureCollection();
  return resultsDiffer ? 1 : 0;
}
