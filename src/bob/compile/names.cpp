#include "bob/compile/names.h"

#include "bob/heap/interp.h"
#include "bob/heap/raise.h"

namespace {

// What the native allocator counts for the records of a scope and of a name, the text apart.
constexpr uint32_t kScopeRecord = 8;
constexpr uint32_t kNameRecord = 8;
constexpr size_t kMostNames = 255;  // a variable's number is one byte of an instruction

uint32_t recordSize(std::string_view name) { return kNameRecord + uint32_t(name.size()) + 1; }

}  // namespace

void BobNames::push() {
  interp->countNative(kScopeRecord);
  scopes.emplace_back();
}

void BobNames::pop() {
  for (const std::string& name : scopes.back()) interp->uncountNative(recordSize(name));
  interp->uncountNative(kScopeRecord);
  scopes.pop_back();
}

void BobNames::clear() {
  while (!scopes.empty()) pop();
}

void BobNames::add(std::string_view name) {
  interp->countNative(recordSize(name));
  scopes.back().emplace_back(name);
  if (scopes.back().size() > kMostNames) bobRaise(interp, kBobTooMuchCode);
}

std::vector<std::vector<std::string>> BobNames::around() const { return {scopes.rbegin() + 1, scopes.rend()}; }

bool BobNames::find(std::string_view name, int* depth, int* index) const {
  for (size_t d = 0; d < scopes.size(); ++d) {
    const std::vector<std::string>& names = scopes[scopes.size() - 1 - d];
    for (size_t i = 0; i < names.size(); ++i) {
      if (names[i] != name) continue;
      *depth = int(d);
      *index = int(i + 1);
      return true;
    }
  }
  return false;
}
