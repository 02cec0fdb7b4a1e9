// Shows a page in browsers of this machine: serves the viewer, and the files that the page asks for, and tells whoever
// looks when something has been saved.
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

  // `viewer` is the folder with watch.html and what belongs to it.
  PageServer(std::filesystem::path viewer, FileOf fileOf);
  ~PageServer();  // ends all connections
  PageServer(const PageServer&) = delete;
  PageServer& operator=(const PageServer&) = delete;

  // Port 0 is any that is free. Throws KitError when it is taken.
  void start(int port = 0);
  std::string address() const;  // to open: http://127.0.0.1:PORT/TOKEN/

  // Under which address, from the root on, a file is served: /TOKEN/files/FULL-NAME.
  std::string placeOf(const std::filesystem::path& file) const;

  // Sends a line of JSON to all who look. Who comes later gets the last one.
  void tell(const std::string& json);

 private:
  struct State;
  std::unique_ptr<State> state;
};
