#include "kit/lsp/lspserver.h"

#include <algorithm>
#include <utility>

#include "kit/errors.h"
#include "kit/lsp/features.h"
#include "kit/lsp/fileuri.h"
#include "kit/lsp/lspjson.h"
#include "kit/version.h"

using nlohmann::json;

namespace {

constexpr std::chrono::milliseconds kForever{1000};
constexpr int kIncremental = 2;  // changes of texts

template <class Handler>
struct Named {
  const char* method;
  Handler handler;
};

template <class Handler, size_t N>
Handler find(const Named<Handler> (&all)[N], const std::string& method) {
  const auto found = std::find_if(all, all + N, [&](const Named<Handler>& each) { return method == each.method; });
  return found == all + N ? nullptr : found->handler;
}

}  // namespace

LspServer::Request LspServer::requestNamed(const std::string& method) {
  static constexpr Named<Request> kRequests[] = {
      {"initialize", &LspServer::initialize},
      {"shutdown", &LspServer::shutdown},
      {"textDocument/completion", &LspServer::completion},
      {"textDocument/hover", &LspServer::hover},
      {"textDocument/signatureHelp", &LspServer::signatureHelp},
      {"textDocument/definition", &LspServer::definition},
      {"textDocument/references", &LspServer::references},
      {"textDocument/prepareRename", &LspServer::prepareRename},
      {"textDocument/rename", &LspServer::rename},
      {"textDocument/documentSymbol", &LspServer::documentSymbol},
      {"textDocument/foldingRange", &LspServer::foldingRange},
      {"textDocument/semanticTokens/full", &LspServer::semanticTokens},
      {"textDocument/formatting", &LspServer::formatting},
      {"textDocument/documentLink", &LspServer::documentLink},
      {"textDocument/documentColor", &LspServer::documentColor},
      {"textDocument/colorPresentation", &LspServer::colorPresentation},
  };
  return find(kRequests, method);
}

LspServer::Notification LspServer::notificationNamed(const std::string& method) {
  static constexpr Named<Notification> kNotifications[] = {
      {"initialized", &LspServer::initialized},
      {"textDocument/didOpen", &LspServer::didOpen},
      {"textDocument/didChange", &LspServer::didChange},
      {"textDocument/didSave", &LspServer::didSave},
      {"textDocument/didClose", &LspServer::didClose},
      {"workspace/didChangeWatchedFiles", &LspServer::didChangeWatchedFiles},
  };
  return find(kNotifications, method);
}

LspServer::LspServer(RpcSender& c, Diagnoser::Works works)
    : client(c),
      views(files),
      publisher(c),
      diagnoser(
          [this](const std::string& path, const DiagnosisTask& task, const Diagnosis& found) {
            if (found.made) views.setMadeNames(path, found.made);
            publisher.publish(path, task, found);
          },
          works) {}

int LspServer::run(RpcConnection& messages) {
  while (!hasEnded && !messages.hasEnded())
    if (const auto message = messages.take(kForever)) serve(*message);
  return isShutDown ? 0 : 1;
}

void LspServer::serve(const json& message) {
  const json* method = findMember(message, "method");
  const json* id = findMember(message, "id");
  if (!method || !method->is_string()) {
    if (message.contains("result") || message.contains("error")) return;  // what the editor answers
    const LspErrorCode code = message.is_null() ? LspErrorCode::parseError : LspErrorCode::invalidRequest;
    client.send({{"jsonrpc", "2.0"},
                 {"id", id ? *id : json()},
                 {"error", {{"code", int(code)}, {"message", "expecting a message with a method"}}}});
    return;
  }
  const json* given = findMember(message, "params");
  const json params = given ? *given : json::object();
  if (!id) return notify(*method, params);
  json answer = {{"jsonrpc", "2.0"}, {"id", *id}};
  const auto fail = [&](LspErrorCode code, const char* text) {
    answer["error"] = {{"code", int(code)}, {"message", text}};
  };
  try {
    answer["result"] = resultOf(*method, params);
  } catch (const LspError& e) {
    fail(e.code, e.what());
  } catch (const KitError& e) {
    fail(LspErrorCode::requestFailed, e.what());
  } catch (const std::exception& e) {
    fail(LspErrorCode::internalError, e.what());
  }
  client.send(answer);
}

json LspServer::resultOf(const std::string& method, const json& params) {
  if (isShutDown) throw LspError(LspErrorCode::invalidRequest, "the server is shut down");
  if (!isInitialized && method != "initialize")
    throw LspError(LspErrorCode::serverNotInitialized, "the first request has to be initialize");
  const Request request = requestNamed(method);
  if (!request) throw LspError(LspErrorCode::methodNotFound, "'" + method + "' is no request that is known here");
  return (this->*request)(params);
}

// Nobody is answered, whatever is wrong with it.
void LspServer::notify(const std::string& method, const json& params) {
  if (method == "exit") hasEnded = true;
  const Notification notification = notificationNamed(method);
  if (!notification || !isInitialized || isShutDown) return;
  try {
    (this->*notification)(params);
  } catch (const std::exception& e) {
    client.send({{"jsonrpc", "2.0"},
                 {"method", "window/logMessage"},
                 {"params", {{"type", 1}, {"message", method + ": " + e.what()}}}});
  }
}

// ---- beginning and end

json LspServer::initialize(const json& params) {
  if (isInitialized) throw LspError(LspErrorCode::invalidRequest, "initialize has been requested before");
  isInitialized = true;
  const json* workspace = findMember(params, "capabilities");
  for (const char* key : {"workspace", "didChangeWatchedFiles", "dynamicRegistration"})
    workspace = workspace ? findMember(*workspace, key) : nullptr;
  canWatchFiles = workspace && workspace->is_boolean() && workspace->get<bool>();
  return {{"capabilities",
           {{"positionEncoding", "utf-16"},
            {"textDocumentSync", {{"openClose", true}, {"change", kIncremental}, {"save", true}}},
            {"completionProvider", {{"triggerCharacters", {".", "(", "\\", " "}}}},
            {"hoverProvider", true},
            {"signatureHelpProvider", {{"triggerCharacters", {"(", ","}}}},
            {"semanticTokensProvider", {{"legend", semanticLegend()}, {"full", true}}},
            {"definitionProvider", true},
            {"referencesProvider", true},
            {"renameProvider", {{"prepareProvider", true}}},
            {"documentSymbolProvider", true},
            {"foldingRangeProvider", true},
            {"documentFormattingProvider", true},
            {"documentLinkProvider", {{"resolveProvider", false}}},
            {"colorProvider", true}}},
          {"serverInfo", {{"name", "kpg"}, {"version", kitVersion()}}}};
}

// Pages are made of files that nobody has open.
void LspServer::initialized(const json&) {
  if (!canWatchFiles) return;
  const json watcher = {{"globPattern", "**/*.{yaml,yml,bob,csv,png,gif,ttf}"}};
  const json registration = {
      {"id", "files"}, {"method", "workspace/didChangeWatchedFiles"}, {"registerOptions", {{"watchers", {watcher}}}}};
  client.send({{"jsonrpc", "2.0"},
               {"id", "files"},
               {"method", "client/registerCapability"},
               {"params", {{"registrations", {registration}}}}});
}

json LspServer::shutdown(const json&) {
  isShutDown = true;
  return nullptr;
}

// ---- texts

OpenFile& LspServer::openFile(const json& params) {
  const std::string uri = textOf(memberOf(params, "textDocument"), "uri");
  OpenFile* file = files.find(uri);
  if (!file) throw LspError(LspErrorCode::invalidParams, uri + " isn't open");
  return *file;
}

void LspServer::didOpen(const json& params) {
  const json& document = memberOf(params, "textDocument");
  const OpenFile& file = files.open(textOf(document, "uri"), numberOf(document, "version"), textOf(document, "text"));
  publisher.expect(file.path);
  diagnoseAgain(file.path);
}

void LspServer::didChange(const json& params) {
  OpenFile& file = openFile(params);
  EditedText text = *file.text;
  for (const json& change : memberOf(params, "contentChanges")) {
    const json* range = findMember(change, "range");
    if (range)
      text.replace(rangeOf(*range), textOf(change, "text"));
    else
      text = EditedText(textOf(change, "text"));
  }
  file.change(std::move(text));
  file.version = numberOf(memberOf(params, "textDocument"), "version");
  diagnoseAgain(file.path);
}

void LspServer::didSave(const json& params) {
  OpenFile& file = openFile(params);
  file.isSaved = true;
  diagnoseAgain(file.path);
}

void LspServer::didClose(const json& params) {
  const OpenFile& file = openFile(params);
  const std::string path = file.path;
  diagnoser.drop(path);
  files.close(file.uri);
  publisher.forget(path, files.snapshot());
  for (const std::string& page : publisher.madeOf(path)) diagnoseAgain(page);  // of what the disk has
}

void LspServer::didChangeWatchedFiles(const json& params) {
  for (const json& change : memberOf(params, "changes")) diagnoseAgain(pathOfUri(textOf(change, "uri")));
}

// The file, and what is made of it.
void LspServer::diagnoseAgain(const std::string& path) {
  if (const OpenFile* file = files.at(path)) diagnoseOne(*file);
  for (const std::string& page : publisher.madeOf(path))
    if (const OpenFile* file = files.at(page)) diagnoseOne(*file);
}

void LspServer::diagnoseOne(const OpenFile& file) {
  bool isSaved = file.isSaved;
  for (const std::string& source : publisher.sourcesOf(file.path))
    if (const OpenFile* other = files.at(source)) isSaved = isSaved && other->isSaved;
  diagnoser.add(file.path, {views.kindOf(file.path), isSaved, files.snapshot()});
}

// ---- questions

LspServer::Place LspServer::placeOf(const json& params) {
  const OpenFile& file = openFile(params);
  const json* position = findMember(params, "position");
  return {file, position ? file.text->offsetOf(positionOf(*position)) : 0, sourceKindOf(file.path, file.text->text())};
}

json LspServer::completion(const json& params) {
  const Place place = placeOf(params);
  if (!place.isSource()) return nullptr;
  return completeAt(views, place.file.path, place.offset);
}

json LspServer::hover(const json& params) {
  const Place place = placeOf(params);
  if (!place.isSource()) return nullptr;
  json inScript = hoverScript(views, place.file.path, place.offset);
  return inScript.is_null() && place.isPage() ? hoverPage(views, place.file.path, place.offset) : inScript;
}

json LspServer::signatureHelp(const json& params) {
  const Place place = placeOf(params);
  return place.isSource() ? signatureAt(views, place.file.path, place.offset) : json();
}

json LspServer::definition(const json& params) {
  const Place place = placeOf(params);
  return place.isSource() ? definitionAt(views, place.file.path, place.offset) : json();
}

json LspServer::references(const json& params) {
  const Place place = placeOf(params);
  const json* context = findMember(params, "context");
  const json* with = context ? findMember(*context, "includeDeclaration") : nullptr;
  const bool withDefinitions = with && with->is_boolean() && with->get<bool>();
  return place.isSource() ? referencesAt(views, place.file.path, place.offset, withDefinitions) : json();
}

json LspServer::prepareRename(const json& params) {
  const Place place = placeOf(params);
  return place.isSource() ? prepareRenameAt(views, place.file.path, place.offset) : json();
}

json LspServer::rename(const json& params) {
  const Place place = placeOf(params);
  const std::string to = textOf(params, "newName");
  return place.isSource() ? renameAt(views, place.file.path, place.offset, to) : json();
}

json LspServer::documentSymbol(const json& params) {
  const Place place = placeOf(params);
  if (place.isPage()) return outlineOfPage(*views.page(place.file.path));
  return place.isSource() ? outlineOfScript(*views.scripts(place.file.path).front()) : json();
}

json LspServer::foldingRange(const json& params) {
  const Place place = placeOf(params);
  if (!place.isSource()) return nullptr;
  json folds = place.isPage() ? foldsOfPage(*views.page(place.file.path)) : json::array();
  for (const auto& script : views.scripts(place.file.path))
    for (json& fold : foldsOfScript(*script)) folds.push_back(std::move(fold));
  return folds;
}

json LspServer::semanticTokens(const json& params) {
  const Place place = placeOf(params);
  return place.isSource() ? semanticTokensOf(views, place.file.path) : json();
}

json LspServer::formatting(const json& params) {
  const Place place = placeOf(params);
  return place.isSource() ? formatScripts(views, place.file.path) : json();
}

json LspServer::documentLink(const json& params) {
  const Place place = placeOf(params);
  return place.isSource() ? linksIn(views, place.file.path) : json();
}

json LspServer::documentColor(const json& params) {
  const Place place = placeOf(params);
  return place.isPage() ? colorsOfPage(*views.page(place.file.path)) : json::array();
}

json LspServer::colorPresentation(const json& params) {
  return colorPresentations(memberOf(params, "color"), rangeOf(memberOf(params, "range")));
}
