// The requests by which programs drive a page in the studio, as lines of JSON:
//
//   {"key":"Down"}       press a key
//   {"wait":500}         let so many milliseconds of the page pass
//   {"eval":"x = 3;"}    type a line at the console
//   {"shot":"out.png"}   save the screen there, or, with null, answer it in base64
//   {"tree":true}        the widgets, each before what lies in it
//   {"log":true}         what was logged since the last such request
//   {"reload":true}      open the page anew
//   {"stop":true}        end the script that runs on and on, which another request may wait for
//
// Each is answered by one line, {"ok":true,...} or {"error":"..."}.
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct ControlRequest {
  enum Kind { key, wait, eval, shot, tree, log, reload, stop } kind;
  std::string argument;  // empty where there is none, and for a picture in the answer

  bool operator==(const ControlRequest&) const = default;
};

inline constexpr size_t kMostControlLine = size_t{1} << 20;  // bytes of a request
inline constexpr int64_t kLongestControlWait = 600'000;      // milliseconds

// Both throw KitError for what is no request, or whose argument is none.
ControlRequest readControlRequest(std::string_view line);
// As on a command line: `key Down wait 500 shot out.png tree`.
std::vector<ControlRequest> controlRequestsOf(const std::vector<std::string>& words);

std::string controlLine(const ControlRequest& request);  // without its end
