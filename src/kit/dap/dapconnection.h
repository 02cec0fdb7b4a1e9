// Messages of the Debug Adapter Protocol over two streams: a header with the length, then JSON.
//
// The protocol is Microsoft's, published at https://microsoft.github.io/debug-adapter-protocol. Messages are read by a
// thread of their own, so that one that asks for a pause is seen while a script runs.
#pragma once

#include <chrono>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

class DapConnection {
 public:
  // The streams must stay open for as long as the program runs: a read of one can't be interrupted.
  DapConnection(std::FILE* in, std::FILE* out);

  // The next message, after at most so long; none in time, or none ever after the end.
  std::optional<nlohmann::json> take(std::chrono::milliseconds wait);
  bool hasEnded() const;  // and everything has been taken
  // Gives the message a number of its own.
  void send(nlohmann::json message);

 private:
  struct Inbox;
  std::shared_ptr<Inbox> inbox;
  std::FILE* out;
  int sent = 0;
};
