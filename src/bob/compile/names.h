// The names of variables while code is compiled: a scope for each function and for each block with declarations, the
// innermost last. They nest across functions, which is how a closure finds the variables around it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "bob/base/value.h"

class BobNames {
 public:
  explicit BobNames(BobInterp* interp) : interp(interp) {}

  void push();
  void pop();
  void clear();
  // Declares a variable of the innermost scope; error "Too much code" if that has 255 already.
  void add(std::string_view name);
  const std::vector<std::string>& innermost() const { return scopes.back(); }
  // The scopes around the innermost one, from the inside out.
  std::vector<std::vector<std::string>> around() const;
  // The scopes outward from the innermost one, counted from 0, and the variable's number in its scope, from 1.
  bool find(std::string_view name, int* depth, int* index) const;

 private:
  BobInterp* interp;
  std::vector<std::vector<std::string>> scopes;
};
