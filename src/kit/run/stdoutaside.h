// While it lives, what the system itself writes to the C library's standard output is kept aside, so that the standard
// output has only what was asked for.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

class StandardOutputAside {
 public:
  StandardOutputAside();
  ~StandardOutputAside() { end(); }
  StandardOutputAside(const StandardOutputAside&) = delete;
  StandardOutputAside& operator=(const StandardOutputAside&) = delete;

  // Writes to the standard output itself meanwhile. Throws KitError when that fails.
  void print(const std::string& text) const;

  // Restores the standard output and returns what was written meanwhile.
  std::string end();

 private:
  std::unique_ptr<FILE, int (*)(FILE*)> written;
  int kept;
};
