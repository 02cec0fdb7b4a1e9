// An interpreter of the player's size for tests, with what it writes kept as text.
#pragma once

#include <string>
#include <utility>

#include "bob/bob.h"
#include "bob/heap/interp.h"

class TextStream : public BobStream {
 public:
  int PutC(int c) override { return text += char(c), c; }
  std::string take() { return std::exchange(text, {}); }
  std::string text;
};

struct Session {
  explicit Session(uint32_t heapBytes = 102400, uint32_t stackWords = 65536)
      : interp(bobMakeInterp(heapBytes, 0, stackWords)) {
    bobRegisterGlobals(interp);
    bobInitCompiler(interp);
    bobSetStdout(interp, &out);
    bobSetStderr(interp, &err);
  }
  ~Session() { bobDestroyInterp(interp); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  BobScope* root() { return bobRootScope(interp); }

  // Runs source statement by statement: false if an error ended it.
  bool run(std::string_view source) {
    BobStringInput input(source);
    return bobTry(interp, [&] { bobRunSource(root(), &input, nullptr); });
  }
  // The console's answer to one line: errors, then output, without the collector's reports and identity numbers.
  std::string eval(std::string_view line) {
    bobConsoleEvaluate(root(), line);
    return answer();
  }
  std::string answer() {
    const std::string errors = err.take();
    return plain(errors) + plain(out.take());
  }
  static std::string plain(const std::string& text);

  TextStream out, err;
  BobInterp* interp;
};
