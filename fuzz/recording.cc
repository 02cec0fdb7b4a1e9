// Recordings: what is read is written so that it reads back the same.
#include <cstdlib>

#include "folder.h"
#include "kit/errors.h"
#include "kit/run/recording.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  enterFolder();
  writeBytes("r.yaml", data, size);
  Recording first;
  try {
    first = readRecording("r.yaml");
  } catch (const KitError&) {
    return 0;
  }
  const std::string text = recordingText(first);
  writeBytes("r.yaml", reinterpret_cast<const uint8_t*>(text.data()), text.size());
  if (recordingText(readRecording("r.yaml")) != text) std::abort();
  return 0;
}
