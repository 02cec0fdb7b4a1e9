// Keys at random on a page: what goes wrong on the way, and the fewest keys that show it.
//
// A walk asks for no more than that nothing complains, that the focus is never lost and that memory doesn't grow for
// ever. The same seed gives the same walk on every machine.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kit/testing/testedpage.h"
#include "kit/testing/testfile.h"

struct WalkFault {
  enum Kind { complaint, lostFocus, stopped, growth } kind;
  std::string text;      // what is wrong, for people
  std::string likeness;  // equal for faults that are the same
};

struct WalkFailure {
  WalkFault fault;
  std::vector<std::string> keys;    // up to the fault
  std::vector<std::string> fewest;  // of them, in order, with the same fault; empty when it couldn't be made again
};

// How keys become fewer: a page where the walk began, anew each time. Null when it can't be made again.
using WalkStart = std::function<std::unique_ptr<TestedPage>()>;

std::optional<WalkFailure> walk(TestedPage& page, const WalkStep& step, uint32_t seed, bool strict,
                                const WalkStart& start);

// The shortest list that is found by leaving out parts of `all` for which `fails` still holds; it holds for `all`.
// `tries` bounds how often it is asked.
std::vector<std::string> fewestThatFail(const std::vector<std::string>& all,
                                        const std::function<bool(const std::vector<std::string>&)>& fails,
                                        size_t tries);

// "Down, Down, Select"; equal ones that follow each other as "Down x 2".
std::string keysText(const std::vector<std::string>& keys);
