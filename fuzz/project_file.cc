// Project files, beside a page and a picture that patterns can find: what is read can be planned and asked.
#include <string>

#include "folder.h"
#include "kit/errors.h"
#include "kit/pictures/png.h"
#include "kit/project/plan.h"

namespace {

void makeFiles() {
  if (!enterFolder()) return;
  constexpr const char* kPage = "page: {type: group}\n";
  for (const char* name : {"a.yaml", "b.yaml"}) std::ofstream(name) << kPage;
  std::ofstream("part.yaml") << "styles: []\n";
  std::ofstream("broken.yaml") << "page: [\n";
  writePng("a.png", 2, 1, {0x123456, 0});  // as a shot of the page would be
  writePng("art.png", 2, 1, {0x123456, 0});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  makeFiles();
  writeBytes("vistrel.yaml", data, size);
  try {
    const Project project = readProject("vistrel.yaml");
    pageOfProject(project, "a.yaml");
    for (const ProjectFont& font : project.fonts) isFontFileName(font.font.text);
    planProject(project);
  } catch (const KitError&) {
  }
  if (findProject("").empty()) __builtin_trap();
  return 0;
}
