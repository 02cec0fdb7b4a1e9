// Talks to a studio through its control socket.
#pragma once

#include <string>
#include <string_view>

class ControlClient {
 public:
  // Throws KitError when nobody listens there.
  explicit ControlClient(const std::string& path);
  ~ControlClient();
  ControlClient(const ControlClient&) = delete;
  ControlClient& operator=(const ControlClient&) = delete;

  // Sends a line and waits for the answer, for as long as it takes. Throws KitError when the other side goes away.
  std::string ask(std::string_view line);

 private:
  const std::string path;
  int socket = -1;
  std::string received;  // after the last answer
};

// A connection to a local socket, to be closed by the caller. Throws KitError when nobody listens there.
int connectLocally(const std::string& path);

// Passes on what comes from one side to the other, between the standard streams and the socket, until the socket ends.
// Throws KitError when nobody listens there. SIGPIPE must be ignored.
void joinLocally(const std::string& path);
