// kpg remote: drives a page that is open in the studio.
#include <iostream>
#include <memory>

#include "kit/control/controlclient.h"
#include "kit/control/controlrequest.h"
#include "kit/errors.h"
#include "kit/files.h"
#include "kit/readjson.h"
#include "kit/source/base64.h"
#include "kpg/commands.h"

namespace {

struct RemoteOptions {
  std::string path;
  std::vector<std::string> words;
  bool json = false;
};

std::string textOf(const JsonValue& value, const char* key) {
  const JsonValue* found = value.find(key);
  return found && found->kind == JsonValue::Kind::text ? found->text : "";
}

int numberOf(const JsonValue& value, const char* key) {
  const JsonValue* found = value.find(key);
  return found ? int(found->number) : 0;
}

bool isTrue(const JsonValue& value, const char* key) {
  const JsonValue* found = value.find(key);
  return found && found->isTrue;
}

void printTree(const JsonValue& answer) {
  const JsonValue* tree = answer.find("tree");
  if (!tree) return;
  for (const JsonValue& widget : tree->array) {
    const std::string name = textOf(widget, "name"), text = textOf(widget, "text");
    std::cout << std::string(2 * size_t(numberOf(widget, "level")), ' ') << (name.empty() ? "-" : name) << "  "
              << textOf(widget, "type") << "  " << numberOf(widget, "x") << " " << numberOf(widget, "y") << "  "
              << numberOf(widget, "width") << "x" << numberOf(widget, "height");
    if (isTrue(widget, "focused")) std::cout << "  focus";
    if (isTrue(widget, "hidden")) std::cout << "  hidden";
    if (!text.empty()) std::cout << "  '" << text << "'";
    std::cout << "\n";
  }
}

// The picture is saved here, since the studio may run elsewhere in the tree of folders.
void savePicture(const std::string& file, const JsonValue& answer) {
  const auto bytes = base64Decode(textOf(answer, "png"));
  if (!bytes || bytes->empty()) throw KitError("the answer has no picture");
  writeFile(file, bytes->data(), bytes->size());
}

void print(const ControlRequest& request, const JsonValue& answer) {
  switch (request.kind) {
    case ControlRequest::eval: std::cout << textOf(answer, "output"); break;
    case ControlRequest::log: std::cout << textOf(answer, "log"); break;
    case ControlRequest::tree: printTree(answer); break;
    case ControlRequest::shot: savePicture(request.argument, answer); break;
    default: break;
  }
}

void drive(const RemoteOptions& options) {
  const std::vector<ControlRequest> requests = controlRequestsOf(options.words);
  ControlClient studio(options.path);
  for (const ControlRequest& request : requests) {
    const bool isShot = request.kind == ControlRequest::shot;
    const std::string line = studio.ask(controlLine(isShot ? ControlRequest{request.kind, ""} : request));
    const JsonValue answer = readJson(line);
    if (!isTrue(answer, "ok")) throw KitError(textOf(answer, "error"));
    if (options.json && !isShot) {
      std::cout << line << "\n";
    } else {
      print(request, answer);
    }
  }
}

}  // namespace

void addRemoteCommand(CommandLine& line) {
  auto options = std::make_shared<RemoteOptions>();
  KpgCommand command = line.command("remote", "Drive a page that is open in the studio, through its control socket");
  command.add("path", options->path, "The socket, as the studio's --control has it").required().type("PATH");
  command
      .add("request", options->words,
           "What to do, one after the other: key NAME, wait MS, eval TEXT, shot OUT.png, tree, log, reload, stop")
      .required()
      .type("REQUEST");
  command.flag("--json", options->json, "Print the answers as they come, lines of JSON");
  command.runs([options] { drive(*options); });
}
