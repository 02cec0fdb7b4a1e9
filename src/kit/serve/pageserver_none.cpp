// Where there is no library for it.
#include "kit/errors.h"
#include "kit/serve/pageserver.h"

struct PageServer::State {};

PageServer::PageServer(std::filesystem::path, FileOf) {}
PageServer::~PageServer() = default;
void PageServer::start(int) { throw KitError("pages can't be served to browsers on this system (--serve)"); }
std::string PageServer::address() const { return ""; }
std::string PageServer::placeOf(const std::filesystem::path&) const { return ""; }
void PageServer::tell(const std::string&) {}
