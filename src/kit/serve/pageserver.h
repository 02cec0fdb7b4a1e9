// Shows a page in browsers of this machine: serves the viewer, and the files that the page asks for, and tells whoever
// looks when something has been saved. The library for it takes longer to load than most commands run, so the server is
// a module that is loaded by who wants it.
//
// It listens on the loopback only, and every address begins with a random token, so that other people on the machine,
// and other pages in the browser, learn nothing.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

class PageServer {
 public:
  // Gives the bytes of a file by its full name, or nothing; called on threads of the server, several at a time.
  using FileOf = std::function<std::optional<std::string>(const std::filesystem::path& file)>;

  virtual ~PageServer() = default;  // ends all connections

  // Port 0 is any that is free. False when it is taken.
  virtual bool start(int port = 0) = 0;
  virtual std::string address() const = 0;  // to open: http://127.0.0.1:PORT/TOKEN/

  // Under which address, from the root on, a file is served: /TOKEN/files/FULL-NAME.
  virtual std::string placeOf(const std::filesystem::path& file) const = 0;

  // Sends a line of JSON to all who look. Who comes later gets the last one.
  virtual void tell(const std::string& json) = 0;
};

// `module` is the file of the server's code, and `viewer` the folder with watch.html and what belongs to it. Throws
// KitError where there is no such module.
std::unique_ptr<PageServer> loadPageServer(const std::filesystem::path& module, const std::filesystem::path& viewer,
                                           PageServer::FileOf fileOf);

// What the module has, under this name.
inline constexpr char kMakePageServer[] = "makePageServer";
using MakePageServer = PageServer*(const std::filesystem::path& viewer, PageServer::FileOf& fileOf);
