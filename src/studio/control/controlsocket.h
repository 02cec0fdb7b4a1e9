// A local socket for others to drive the page, readable by its owner only: a line in, a line out.
//
// Nothing here waits and nothing is a thread. Who has an event loop waits for `watched` and calls `step`, and asks for
// `watched` again after each step; who has none lets `step` wait. While the page runs no step may be taken, but one
// that leaves all but urgent requests waiting.
#pragma once

#include <poll.h>

#include <functional>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "studio/control/privatelistener.h"

class ControlSocket {
 public:
  using Answer = std::function<std::string(std::string_view line)>;
  using UrgentAnswer = std::function<std::optional<std::string>(std::string_view line)>;

  // Throws what PrivateListener does.
  ControlSocket(const std::string& path, Answer answer);
  ~ControlSocket();
  ControlSocket(const ControlSocket&) = delete;
  ControlSocket& operator=(const ControlSocket&) = delete;

  // Waits up to so many milliseconds for something to do (-1: for ever), and does what can be done without waiting: of
  // each client at most one request.
  void step(int milliseconds = 0);
  // Also while a request is being answered: answers what `urgent` has an answer for, and nothing else.
  void stepAmidst(const UrgentAnswer& urgent);

  std::vector<pollfd> watched() const;
  size_t clients() const { return connected.size(); }

 private:
  struct Client;

  void acceptAll();
  void serveReady(int milliseconds, const UrgentAnswer& answerTo);
  static void serve(Client& client, const UrgentAnswer& answerTo);

  PrivateListener listener;
  const Answer answer;
  std::list<Client> connected;
  bool isStepping = false;
};
