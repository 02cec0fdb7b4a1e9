// Where there is no library for it.
#include "kit/errors.h"
#include "kit/serve/pageserver.h"

std::unique_ptr<PageServer> loadPageServer(const std::filesystem::path&, const std::filesystem::path&,
                                           PageServer::FileOf) {
  throw KitError("pages can't be served to browsers on this system (--serve)");
}
