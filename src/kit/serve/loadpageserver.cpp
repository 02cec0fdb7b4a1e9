#include <dlfcn.h>

#include <bit>

#include "kit/errors.h"
#include "kit/serve/pageserver.h"

std::unique_ptr<PageServer> loadPageServer(const std::filesystem::path& module, const std::filesystem::path& viewer,
                                           PageServer::FileOf fileOf) {
  if (module.empty()) throw KitError("the server for browsers isn't installed with kpg (--serve)");
  void* const code = dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL);  // for as long as the program runs
  void* const make = code ? dlsym(code, kMakePageServer) : nullptr;
  if (!make) throw KitError("the server for browsers can't be loaded (--serve): " + std::string(dlerror()));
  return std::unique_ptr<PageServer>(std::bit_cast<MakePageServer*>(make)(viewer, fileOf));
}
