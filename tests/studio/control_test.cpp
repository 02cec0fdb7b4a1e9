// A page driven by requests: as lines, through the socket, and by kpg remote.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "kit/control/controlclient.h"
#include "kit/pictures/png.h"
#include "kit/readjson.h"
#include "kit/source/base64.h"
#include "studio/control/controlprotocol.h"
#include "studio/control/controlsocket.h"
#include "studio/studiofixture.h"

namespace {

constexpr char kPage[] =
    "flags: 16bit\n"
    "page:\n"
    "  {type: group, width: 720, height: 480, bgColor: '#FFFFFF', start: n, children: [\n"
    "  {type: number, name: n, x: 8, y: 6, width: 90, height: 20, value: 1, navigate: leftRight}]}\n";
constexpr char kDone[] = "{\"ok\":true}";

class ControlTest : public WatchedSessionTest {
 protected:
  void SetUp() override {
    open(kPage);
    protocol = std::make_unique<ControlProtocol>(*session);
  }
  std::string ask(const std::string& line) { return protocol->answer(line); }
  std::string errorOf(const std::string& line) {
    const JsonValue answer = readJson(ask(line));
    return answer.find("error") ? answer.find("error")->text : "";
  }
  int value() { return std::get<int32_t>(readKeptState(session->run()->engine()).values.at("n")); }

  std::unique_ptr<ControlProtocol> protocol;
};

TEST_F(ControlTest, RequestsDriveThePage) {
  EXPECT_EQ(ask(R"({"key":"Right"})"), kDone);
  EXPECT_EQ(value(), 2);
  EXPECT_EQ(ask(R"({"wait":500})"), kDone);
  EXPECT_EQ(session->run()->player().clock, 500u);
  EXPECT_EQ(ask(R"({"eval":"widgets.n.value = 40 + 2;"})"), R"({"ok":true,"output":"--> 42\u000a"})");
  EXPECT_EQ(value(), 42);
  EXPECT_EQ(session->recording().actions.size(), 3u);
  EXPECT_NE(
      ask(R"({"tree":true})")
          .find(
              R"("type":"number","name":"n","x":8,"y":6,"width":90,"height":20,"focused":true,"text":"42","value":42})"),
      std::string::npos)
      << ask(R"({"tree":true})");
}

TEST_F(ControlTest, TheLogComesInPiecesAndBeginsAnewWithThePage) {
  ask(R"({"log":true})");
  ask(R"({"eval":"1;"})");
  EXPECT_EQ(ask(R"({"log":true})"), R"({"ok":true,"log":"--> 1\u000a"})");
  EXPECT_EQ(ask(R"({"log":true})"), R"({"ok":true,"log":""})");
  EXPECT_EQ(ask(R"({"reload":true})"), kDone);
  EXPECT_NE(ask(R"({"log":true})").find("--> 1"), std::string::npos) << "of what was replayed";
}

TEST_F(ControlTest, PicturesGoToAFileOrIntoTheAnswer) {
  EXPECT_EQ(ask("{\"shot\":\"" + at("out.png") + "\"}"), kDone);
  const auto bytes = readFile(at("out.png"));
  const Picture picture = decodePng("out.png", bytes);
  EXPECT_EQ(picture.width, 720u);
  EXPECT_EQ(picture.pixels[720 * 400 + 700] & 0xFFFFFF, 0xFCFCFCu);
  const auto inAnswer = base64Decode(readJson(ask(R"({"shot":null})")).find("png")->text);
  EXPECT_EQ(inAnswer, std::string(bytes.begin(), bytes.end()));
  EXPECT_NE(errorOf("{\"shot\":\"" + at("p.yaml") + "\"}"), "") << "that is what the page is made from";
  EXPECT_NE(errorOf("{\"shot\":\"" + at("none/out.png") + "\"}"), "");
}

TEST_F(ControlTest, AReloadSaysWhatIsWrongAndThePageStays) {
  ask(R"({"key":"Right"})");
  write("p.yaml", "page: {type: gruop}\n");
  EXPECT_NE(errorOf(R"({"reload":true})").find("p.yaml:1: "), std::string::npos);
  EXPECT_EQ(ask(R"({"key":"Right"})"), kDone);
  EXPECT_EQ(value(), 3);
}

TEST_F(ControlTest, JunkIsAnsweredByAnError) {
  const std::string deep = std::string(100'000, '[');
  for (const std::string& line : {std::string(),
                                  std::string("{"),
                                  std::string("nonsense"),
                                  std::string("null"),
                                  std::string("[]"),
                                  std::string("{}"),
                                  std::string(R"({"key":"Down","wait":1})"),
                                  std::string(R"({"key":7})"),
                                  std::string(R"({"key":"Middle"})"),
                                  std::string(R"({"wait":-1})"),
                                  std::string(R"({"wait":1.5})"),
                                  std::string(R"({"wait":1e300})"),
                                  std::string(R"({"wait":"5"})"),
                                  std::string(R"({"tree":false})"),
                                  std::string(R"({"shot":""})"),
                                  std::string(R"({"shot":true})"),
                                  std::string(R"({"kye":"Up"})"),
                                  std::string(R"({"key":"Up"} x)"),
                                  std::string("{\"eval\":\"\xFF\"}"),
                                  std::string("{\"eval\":\"a\nb\"}"),
                                  std::string("\0", 1),
                                  deep,
                                  std::string(kMostControlLine + 1, ' ')}) {
    EXPECT_NE(errorOf(line), "") << line.substr(0, 60);
  }
  EXPECT_EQ(errorOf(R"({"kye":"Up"})"), "there is no request 'kye'; did you mean 'key'?");
  EXPECT_EQ(value(), 1);
  EXPECT_TRUE(session->recording().actions.empty());
}

TEST_F(ControlTest, WhatHadToBeEndedIsAnErrorAndTheNextRequestWorks) {
  int calls = 0;
  std::string amidst;
  session->run()->player().whileBusy = [&] {
    ++calls;
    if (calls == 2) amidst = errorOf(R"({"tree":true})");
    if (calls == 3) session->run()->player().interrupt();
  };
  EXPECT_NE(errorOf(R"({"eval":"for (;;);"})").find("stopped"), std::string::npos);
  EXPECT_EQ(amidst, "another request is being answered");
  EXPECT_EQ(ask(R"({"key":"Right"})"), kDone);
  EXPECT_EQ(value(), 2);
}

// ---- the socket

class ControlSocketTest : public ControlTest {
 protected:
  ~ControlSocketTest() override { leave(); }

  void listen() {
    socket = std::make_unique<ControlSocket>(path, [this](std::string_view line) { return protocol->answer(line); });
    server = std::thread([this] {
      while (!ends) socket->step(5);
    });
  }
  void leave() {
    ends = true;
    if (server.joinable()) server.join();
    socket.reset();
  }
  int connectRaw() const {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const int file = ::socket(AF_UNIX, SOCK_STREAM, 0);
    EXPECT_EQ(connect(file, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    return file;
  }
  static std::string readAll(int file) {
    std::string all;
    char bytes[4096];
    for (ssize_t n; (n = recv(file, bytes, sizeof bytes, 0)) > 0;) all.append(bytes, size_t(n));
    return all;
  }

  const std::string path = at("control");
  std::unique_ptr<ControlSocket> socket;
  std::atomic<bool> ends = false;
  std::thread server;
};

TEST_F(ControlSocketTest, SeveralClientsAreServedAndOnlyTheOwnerMayCome) {
  const mode_t before = umask(0);
  listen();
  umask(before);
  struct stat made;
  ASSERT_EQ(lstat(path.c_str(), &made), 0);
  EXPECT_EQ(made.st_mode & 0777, 0600u);
  {
    ControlClient one(path), two(path);
    EXPECT_EQ(one.ask(R"({"key":"Right"})"), kDone);
    EXPECT_EQ(two.ask(R"({"key":"Right"})"), kDone);
    EXPECT_EQ(two.ask(R"({"eval":"widgets.n.value;"})"), R"({"ok":true,"output":"--> 3\u000a"})");
    EXPECT_NE(readJson(one.ask(R"({"shot":null})")).find("png"), nullptr);
  }
  EXPECT_THROW(ControlSocket(path, nullptr), KitError) << "somebody listens";
  leave();
  EXPECT_NE(lstat(path.c_str(), &made), 0) << "it is removed at the end";
  EXPECT_THROW(ControlClient{path}, KitError);
}

// Requests in one piece, cut anywhere, too long, or without an end; and a client that is gone before its answer.
TEST_F(ControlSocketTest, ClientsMayBeClumsy) {
  listen();
  const int file = connectRaw();
  const std::string lines = "{\"key\":\"Right\"}\n{\"key\":\"Ri", rest = "ght\"}\njunk\n",
                    tooLong = std::string(3 * kMostControlLine, 'x') + "\n{\"wait\":1}\n{\"key\"";
  for (const std::string& part : {lines, rest, tooLong})
    for (size_t sent = 0; sent < part.size();) {
      const ssize_t n = send(file, part.data() + sent, part.size() - sent, MSG_NOSIGNAL);
      ASSERT_GT(n, 0);
      sent += size_t(n);
    }
  shutdown(file, SHUT_WR);
  const std::string answers = readAll(file);
  close(file);
  std::vector<std::string> all;
  for (size_t at = 0, end; (end = answers.find('\n', at)) != answers.npos; at = end + 1)
    all.push_back(answers.substr(at, end - at));
  ASSERT_EQ(all.size(), 5u) << answers;
  for (const size_t good : {0, 1, 4}) EXPECT_EQ(all[good], kDone);
  for (const size_t bad : {2, 3}) EXPECT_TRUE(all[bad].starts_with("{\"error\":")) << all[bad];

  const int hasty = connectRaw();
  const std::string wants = "{\"shot\":null}\n{\"key\":\"Right\"}\n{\"shot\":null}\n";
  ASSERT_EQ(send(hasty, wants.data(), wants.size(), 0), ssize_t(wants.size()));
  close(hasty);
  ControlClient next(path);
  EXPECT_EQ(next.ask(R"({"wait":1})"), kDone);
}

// The client that waits gets an answer; requests that came meanwhile are answered after it.
TEST_F(ControlSocketTest, AStopEndsAScriptThatAnotherRequestWaitsFor) {
  std::atomic<bool> runs = false;
  session->run()->player().whileBusy = [&] {
    runs = true;
    socket->stepAmidst([this](std::string_view line) { return protocol->answerAmidst(line); });
  };
  listen();
  ControlClient idle(path);
  EXPECT_EQ(idle.ask(R"({"stop":true})"), kDone) << "nothing runs";
  std::string waited;
  std::thread waiting([&] { waited = ControlClient(path).ask(R"({"eval":"for (;;) widgets.n.value = 7;"})"); });
  while (!runs) std::this_thread::yield();
  std::string later;
  std::thread laterOne([&] { later = ControlClient(path).ask(R"({"eval":"widgets.n.value;"})"); });
  EXPECT_EQ(idle.ask(R"({"stop":true})"), kDone);
  waiting.join();
  laterOne.join();
  EXPECT_NE(waited.find("stopped"), std::string::npos) << waited;
  EXPECT_EQ(later, R"({"ok":true,"output":"--> 7\u000a"})");
}

TEST_F(ControlSocketTest, WhatIsNotItsOwnIsLeftAlone) {
  write("control", "a file");
  EXPECT_THROW(ControlSocket(path, nullptr), KitError);
  EXPECT_EQ(readFile(path).size(), 6u);
  unlink(path.c_str());
  EXPECT_THROW(ControlSocket(at(std::string(200, 'x')), nullptr), KitError);
  EXPECT_THROW(ControlSocket(at("none/control"), nullptr), KitError);

  // One that a studio which was killed has left makes space; one that has come in its place stays.
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const int dead = ::socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(bind(dead, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  close(dead);
  auto first = std::make_unique<ControlSocket>(path, nullptr);
  unlink(path.c_str());
  const ControlSocket second(path, nullptr);
  first.reset();
  struct stat there;
  EXPECT_EQ(lstat(path.c_str(), &there), 0);
}

TEST_F(ControlSocketTest, KpgRemoteSpeaksIt) {
  listen();
  const auto kpg = [&](const std::string& words) {
    const int status =
        std::system((KPG_PROGRAM " remote " + path + " " + words + " >" + at("out") + " 2>" + at("err")).c_str());
    const auto bytes = readFile(at("out"));
    return std::to_string(WEXITSTATUS(status)) + ":" + std::string(bytes.begin(), bytes.end());
  };
  EXPECT_EQ(kpg("key Right wait 5 eval 'widgets.n.value;'"), "0:--> 2\n");
  EXPECT_EQ(kpg("tree"), "0:-  frame  0 0  720x480\n  -  group  0 0  720x480\n    n  number  8 6  90x20  focus  '2'\n");
  EXPECT_EQ(kpg("shot " + at("r.png")), "0:");
  EXPECT_TRUE(isPng(readFile(at("r.png"))));
  EXPECT_EQ(kpg("--json reload key Left"), "0:{\"ok\":true}\n{\"ok\":true}\n");
  for (const char* wrong : {"key", "kye Up", "wait x", "key Up tree log extra"}) EXPECT_EQ(kpg(wrong), "1:") << wrong;
  leave();
  EXPECT_EQ(value(), 1) << "what is wrong in its last word does nothing at all";
  EXPECT_EQ(kpg("tree"), "1:");
  EXPECT_FALSE(readFile(at("err")).empty());
}

}  // namespace
