// A language server: tells an editor what page sources and scripts mean while somebody writes them.
//
// Requests are answered one after the other on one thread, by the texts as they then are; only what is wrong with them
// is found on a second one (diagnoser.h) and sent when it is known.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "kit/lsp/diagnoser.h"
#include "kit/lsp/editedfiles.h"
#include "kit/lsp/publisher.h"
#include "kit/lsp/sourceviews.h"
#include "kit/rpc/rpcconnection.h"

class LspServer {
 public:
  explicit LspServer(RpcSender& client, Diagnoser::Works works = Diagnoser::Works::onItsThread);

  // Until the client says exit, or goes away. Returns the exit status: 0 after a shutdown, else 1.
  int run(RpcConnection& messages);

  // One message. What isn't JSON comes as null.
  void serve(const nlohmann::json& message);

  // For one whose diagnoser works when it is called; see there.
  std::optional<std::chrono::milliseconds> diagnoseNow() { return diagnoser.workNow(); }

 private:
  using json = nlohmann::json;
  using Request = json (LspServer::*)(const json& params);  // answers the result, or throws LspError or KitError
  using Notification = void (LspServer::*)(const json& params);

  static Request requestNamed(const std::string& method);
  static Notification notificationNamed(const std::string& method);
  json resultOf(const std::string& method, const json& params);
  void notify(const std::string& method, const json& params);

  json initialize(const json& params);
  void initialized(const json& params);
  json shutdown(const json& params);
  void didOpen(const json& params);
  void didChange(const json& params);
  void didSave(const json& params);
  void didClose(const json& params);
  void didChangeWatchedFiles(const json& params);

  json completion(const json& params);
  json hover(const json& params);
  json signatureHelp(const json& params);
  json definition(const json& params);
  json references(const json& params);
  json prepareRename(const json& params);
  json rename(const json& params);
  json documentSymbol(const json& params);
  json foldingRange(const json& params);
  json semanticTokens(const json& params);
  json formatting(const json& params);
  json documentLink(const json& params);
  json documentColor(const json& params);
  json colorPresentation(const json& params);

  // A file of a request, and the byte that its position means.
  struct Place {
    const OpenFile& file;
    size_t offset;
    SourceKind kind;
    bool isPage() const { return kind == SourceKind::page || kind == SourceKind::part; }
    bool isSource() const { return isPage() || kind == SourceKind::script; }
  };
  Place placeOf(const json& params);  // offset 0 for a request without a position
  OpenFile& openFile(const json& params);
  void diagnoseAgain(const std::string& path);
  void diagnoseOne(const OpenFile& file);

  RpcSender& client;
  EditedFiles files;
  SourceViews views;
  Publisher publisher;
  Diagnoser diagnoser;
  bool canWatchFiles = false;
  bool isInitialized = false, isShutDown = false, hasEnded = false;
};
