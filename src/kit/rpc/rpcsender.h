// Whoever takes the messages of a server to its client.
#pragma once

#include <nlohmann/json.hpp>

class RpcSender {
 public:
  virtual ~RpcSender() = default;

  // From any thread.
  virtual void send(const nlohmann::json& message) = 0;
};
