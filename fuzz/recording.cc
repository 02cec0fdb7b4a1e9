// Recordings: what is read is written so that it reads back the same, and gathered again step by step.
#include <cstdlib>

#include "folder.h"
#include "kit/errors.h"
#include "kit/run/recording.h"
#include "kit/utf8.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  enterFolder();
  writeBytes("r.yaml", data, size);
  Recording first, gathered;
  try {
    first = readRecording("r.yaml");
  } catch (const KitError&) {
    return 0;
  }
  const std::string text = recordingText(first);
  if (firstBadUtf8(text) != text.npos) return 0;  // the parser makes single bytes of the escapes \N and \_
  writeBytes("r.yaml", reinterpret_cast<const uint8_t*>(text.data()), text.size());
  if (recordingText(readRecording("r.yaml")) != text) std::abort();
  for (const PageAction& action : first.actions) gathered.add(action);
  if (gathered.actions.size() > first.actions.size()) std::abort();
  return 0;
}
