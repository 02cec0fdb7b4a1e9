// Messages of an editor over two streams: a header with the length, then JSON.
//
// The Debug Adapter Protocol (https://microsoft.github.io/debug-adapter-protocol) and the Language Server Protocol
// (https://microsoft.github.io/language-server-protocol) have this in common. Messages are read by a thread of their
// own, so that one that asks for a pause is seen while a script runs.
#pragma once

#include <chrono>
#include <cstdio>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>

#include "kit/rpc/rpcsender.h"

class RpcConnection : public RpcSender {
 public:
  // A read of a stream can't be interrupted, so the thread keeps `in` until it ends.
  RpcConnection(std::shared_ptr<std::FILE> in, std::shared_ptr<std::FILE> out);
  // Over the standard input and output; what else is printed there goes to the error stream.
  RpcConnection();

  // The next message, after at most so long; none in time, or none ever after the end. What is no JSON comes as null.
  std::optional<nlohmann::json> take(std::chrono::milliseconds wait);
  bool hasEnded() const;  // and everything has been taken

  void send(const nlohmann::json& message) override;

 private:
  struct Inbox;
  std::shared_ptr<Inbox> inbox;
  std::mutex sending;
  std::shared_ptr<std::FILE> out;
};
