#include "kit/run/stdoutaside.h"

#include <unistd.h>

#include <utility>

// Without space for a temporary file the error stream takes it.
StandardOutputAside::StandardOutputAside() : written(std::tmpfile(), std::fclose) {
  std::fflush(stdout);
  kept = dup(STDOUT_FILENO);
  dup2(written ? fileno(written.get()) : STDERR_FILENO, STDOUT_FILENO);
}

std::string StandardOutputAside::end() {
  if (kept < 0) return "";
  std::fflush(stdout);
  dup2(kept, STDOUT_FILENO);
  close(std::exchange(kept, -1));
  std::string text;
  if (!written) return text;
  std::rewind(written.get());
  for (int c; (c = std::fgetc(written.get())) != EOF;) text += char(c);
  return text;
}
