#include "kit/run/stdoutaside.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "kit/errors.h"
#include "platform/openfile.h"

// Without space for a temporary file the error stream takes it.
StandardOutputAside::StandardOutputAside() : written(openTemporaryFile(), std::fclose) {
  std::fflush(stdout);
  kept = dup(STDOUT_FILENO);
  dup2(written ? fileno(written.get()) : STDERR_FILENO, STDOUT_FILENO);
}

void StandardOutputAside::print(const std::string& text) const {
  for (size_t done = 0; done < text.size();) {
    const ssize_t n = write(kept, text.data() + done, text.size() - done);
    if (n > 0) {
      done += size_t(n);
    } else if (errno != EINTR) {
      throw KitError(std::string("standard output: can't be written: ") + std::strerror(errno));
    }
  }
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
