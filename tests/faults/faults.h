// Faults on purpose: calls of the test program that fail while an object of one of these classes is there.
//
// The linker leads the calls to stand-ins (CMakeLists.txt), those of this project's own code and of what is compiled
// into the program; shared libraries keep theirs, but for operator new.
#pragma once

#include <atomic>
#include <cstdint>

// The nth call from its making on fails, counted from 0, and so do the ones after it up to `many`.
class Fault {
 public:
  Fault(const Fault&) = delete;
  Fault& operator=(const Fault&) = delete;

  bool happened() const;

  struct Calls {
    std::atomic<uint64_t> asked = 0, from = UINT64_MAX, to = UINT64_MAX;  // any thread counts
    bool fails();
  };

 protected:
  Fault(Calls& calls, uint64_t nth, uint64_t many);
  ~Fault();

 private:
  Calls& calls;
};

// Of operator new in all its forms, malloc, calloc and realloc; and of what the PNG library makes.
class FailingAllocation : public Fault {
 public:
  explicit FailingAllocation(uint64_t nth, uint64_t many = 1);
};

// Of opening, seeking, telling, reading, writing, closing, renaming and linking; where it can, a read gets half of what
// it asks for instead.
class FailingFileCall : public Fault {
 public:
  explicit FailingFileCall(uint64_t nth, uint64_t many = 1);
};
