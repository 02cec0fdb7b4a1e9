// The protocol's own values as JSON: places, ranges, and what a request has given.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "kit/lsp/editedtext.h"

// Codes of errors that the protocol names.
enum class LspErrorCode {
  parseError = -32700,
  invalidRequest = -32600,
  methodNotFound = -32601,
  invalidParams = -32602,
  internalError = -32603,
  serverNotInitialized = -32002,
  requestFailed = -32803,
};

// What a request is answered with instead of a result.
struct LspError : std::runtime_error {
  LspError(LspErrorCode c, const std::string& message) : std::runtime_error(message), code(c) {}
  LspErrorCode code;
};

nlohmann::json positionJson(TextPosition position);
nlohmann::json rangeJson(const TextRange& range);

// What is missing, or of another kind, is an LspError invalidParams; of members that may be missing there are find...
const nlohmann::json& memberOf(const nlohmann::json& object, const char* key);
std::string textOf(const nlohmann::json& object, const char* key);
int numberOf(const nlohmann::json& object, const char* key);
const nlohmann::json* findMember(const nlohmann::json& object, const char* key);
TextPosition positionOf(const nlohmann::json& json);
TextRange rangeOf(const nlohmann::json& json);
