// Answers requests that drive a page: a line of JSON for each, as kit/control/controlrequest.h describes them.
//
// Whatever is asked, the answer is a line: nothing is thrown, and what is no request is answered by an error.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "kit/control/controlrequest.h"
#include "studio/session/session.h"

class ControlProtocol {
 public:
  explicit ControlProtocol(Session& s) : session(s) {}

  // One line without its end; so is the answer. A request in the middle of another one, as when the windows are served
  // while a script runs, is answered by an error.
  std::string answer(std::string_view line);
  // While a request is being answered, or the page runs otherwise: the answer to a stop, which ends what runs. Other
  // lines get none, and are to wait.
  std::optional<std::string> answerAmidst(std::string_view line);

  // How the page is opened anew; by the session itself when it is empty. Errors are those of the session.
  std::function<void()> reload;
  // How what runs is ended; by the run itself when it is empty.
  std::function<void()> stop;

 private:
  std::string obey(const ControlRequest& request);
  std::string act(const ControlRequest& request);
  std::string takeShot(const ControlRequest& request);
  std::string newLog();

  Session& session;
  bool isAnswering = false;
  uint64_t logOf = 0;      // the opening whose log was asked for last
  size_t logAnswered = 0;  // of it, bytes
};
