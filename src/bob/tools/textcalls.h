// Calls that give a function or method one text and nothing else, as the source spells them: LoadPage("menu.kpg").
//
// Found in the source, without running it, for tools that check what a program will ask for.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "bob/base/value.h"

struct BobTextCall {
  std::string text;
  int line;  // from 1
};

// In order, up to the first text that is no token of the language, which is reported as an error.
std::vector<BobTextCall> bobTextCalls(BobInterp* interp, std::string_view source, std::string_view name);
