#include "kit/control/controlrequest.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "host/keytable.h"
#include "kit/errors.h"
#include "kit/json.h"
#include "kit/readjson.h"
#include "kit/source/sourcevalue.h"
#include "kit/suggest.h"

namespace {

struct RequestName {
  const char* name;
  ControlRequest::Kind kind;
  const char* argument;  // on a command line; null for none
};
constexpr RequestName kRequestNames[] = {
    {"key", ControlRequest::key, "NAME"},        {"wait", ControlRequest::wait, "MS"},
    {"eval", ControlRequest::eval, "TEXT"},      {"shot", ControlRequest::shot, "OUT.png"},
    {"tree", ControlRequest::tree, nullptr},     {"log", ControlRequest::log, nullptr},
    {"reload", ControlRequest::reload, nullptr}, {"stop", ControlRequest::stop, nullptr}};

std::vector<std::string> requestWords() {
  std::vector<std::string> words;
  for (const RequestName& request : kRequestNames) words.push_back(request.name);
  return words;
}

const RequestName& requestNamed(const std::string& name) {
  const auto found = std::find_if(std::begin(kRequestNames), std::end(kRequestNames),
                                  [&](const RequestName& request) { return name == request.name; });
  if (found != std::end(kRequestNames)) return *found;
  const std::string meant = suggestion(name, requestWords());
  throw KitError("there is no request '" + name + "'" +
                 (meant.empty() ? "; there are " + listOfWords(requestWords()) : meant));
}

ControlRequest checked(ControlRequest request) {
  const std::string shown = "'" + request.argument + "'";
  if (request.kind == ControlRequest::key && !keyMessageNamed(request.argument))
    throw KitError("there is no key " + shown + suggestion(request.argument, keyNames()));
  if (request.kind == ControlRequest::wait) {
    const auto n = parseInteger(request.argument);
    if (!n || *n < 0 || *n > kLongestControlWait)
      throw KitError(shown + " is no number of milliseconds from 0 to " + std::to_string(kLongestControlWait));
  }
  return request;
}

// A wait is a number; a picture may be null, which asks for it in the answer; what has no argument says true.
std::string argumentOf(const RequestName& request, const JsonValue& value) {
  using Kind = JsonValue::Kind;
  const std::string name = request.name;
  if (!request.argument) {
    if (value.kind != Kind::boolean || !value.isTrue) throw KitError(name + " takes true");
    return "";
  }
  if (request.kind == ControlRequest::wait) {
    const bool isWhole =
        value.kind == Kind::number && std::abs(value.number) < 1e15 && value.number == std::floor(value.number);
    if (!isWhole) throw KitError("wait takes a whole number");
    return std::to_string(int64_t(value.number));
  }
  if (request.kind == ControlRequest::shot && value.kind == Kind::null) return "";
  if (value.kind != Kind::text) throw KitError(name + " takes a text");
  if (request.kind == ControlRequest::shot && value.text.empty()) throw KitError("shot takes a name, or null");
  return value.text;
}

}  // namespace

ControlRequest readControlRequest(std::string_view line) {
  const JsonValue request = readJson(line);
  if (request.kind != JsonValue::Kind::object || request.object.size() != 1)
    throw KitError("a request is an object with one key: " + listOfWords(requestWords(), "or"));
  const auto& [name, value] = request.object.front();
  const RequestName& known = requestNamed(name);
  return checked({known.kind, argumentOf(known, value)});
}

std::vector<ControlRequest> controlRequestsOf(const std::vector<std::string>& words) {
  std::vector<ControlRequest> all;
  for (size_t i = 0; i < words.size(); ++i) {
    const RequestName& request = requestNamed(words[i]);
    if (request.argument && i + 1 == words.size())
      throw KitError(std::string(request.name) + " needs a word more, " + request.argument);
    all.push_back(checked({request.kind, request.argument ? words[++i] : ""}));
  }
  return all;
}

std::string controlLine(const ControlRequest& request) {
  const std::string name = kRequestNames[request.kind].name;
  if (request.kind == ControlRequest::shot && request.argument.empty()) return "{\"shot\":null}";
  JsonWriter json(JsonForm::oneLine);
  json.beginObject();
  if (!kRequestNames[request.kind].argument) {
    json.boolean(name, true);
  } else if (request.kind == ControlRequest::wait) {
    json.number(name, std::stoll(request.argument));
  } else {
    json.string(name, request.argument);
  }
  json.endObject();
  return json.text();
}
