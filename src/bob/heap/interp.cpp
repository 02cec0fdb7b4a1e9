#include "bob/heap/interp.h"

#include <cstdlib>
#include <utility>

// The compiler goes first: it takes back what it had protected.
BobInterp::~BobInterp() {
  compiler.reset();
  while (scopes && scopes != &scope) delete std::exchange(scopes, scopes->next);
  std::free(base);
}
