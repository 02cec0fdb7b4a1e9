// Requests to the studio: one that is read is written as a line that means the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "kit/control/controlrequest.h"
#include "kit/errors.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  try {
    const ControlRequest request = readControlRequest({reinterpret_cast<const char*>(data), size});
    if (readControlRequest(controlLine(request)) != request) std::abort();
  } catch (const KitError&) {
  }
  return 0;
}
