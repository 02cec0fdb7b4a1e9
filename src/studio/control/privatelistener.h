// A local socket that only its owner can connect to, at a path.
#pragma once

#include <cstdint>
#include <string>

class PrivateListener {
 public:
  // Throws KitError when there is something at `path` that is not a socket which nobody listens to any more, left by
  // somebody of the same user; and when the path is too long.
  explicit PrivateListener(const std::string& path);
  ~PrivateListener();  // removes the socket, if it is still the same
  PrivateListener(const PrivateListener&) = delete;
  PrivateListener& operator=(const PrivateListener&) = delete;

  int file() const { return listener; }
  // Of the next that has connected, closed in programs that are started; -1 for none. It doesn't wait.
  int accept();

 private:
  void listenAt();

  const std::string path;
  int listener = -1;
  uint64_t device = 0, inode = 0;  // of the socket's file
};
