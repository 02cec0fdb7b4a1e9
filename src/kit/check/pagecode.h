// The compiled scripts of a page and its script files, each function by itself, with what it does and where it was
// written.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bob/tools/codeuses.h"
#include "kit/check/checks.h"
#include "kit/lines/codeplaces.h"

struct PageFunction {
  const BobCodeUses* code;
  const PageFunction* around;   // the function that it is written in; null for a statement
  const CheckedWidget* widget;  // whose hook it belongs to; null for a script file
  std::string hook;             // "onClick"; empty for a script file
  YamlPlace place;              // of the hook, or of the list of script files
};

class PageCode {
 public:
  PageCode(const CheckedPage& page, OpenedPage& opened);

  const std::vector<std::unique_ptr<PageFunction>>& functions() const { return all; }
  // All scripts are there and could be read, so that what none of them does is done by none.
  bool isComplete() const { return complete; }
  // Passes on a finding at the instruction, with the hook that it lies in.
  void say(const Find& find, std::string_view check, const PageFunction& function, uint32_t offset,
           const std::string& text) const;

  // Calls back with each function and each use in it.
  template <class F>
  void eachUse(F&& visit) const {
    for (const auto& function : all)
      for (const BobCodeUse& use : function->code->uses) visit(*function, use);
  }

 private:
  void read(const std::string& records, const PageFunction& owner);
  void add(const BobCodeUses& code, const PageFunction& owner, const PageFunction* around);
  YamlPlace placeOf(const PageFunction& function, uint32_t offset) const;

  std::vector<std::unique_ptr<BobCodeUses>> statements;
  std::vector<std::unique_ptr<PageFunction>> all;
  CodePlaces places;
  bool complete = true;
};
