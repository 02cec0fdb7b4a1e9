#include "studio/control/controlsocket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <utility>

#include "kit/control/controlrequest.h"

namespace {

constexpr size_t kMostClients = 16;

#ifdef MSG_NOSIGNAL
constexpr int kQuietly = MSG_NOSIGNAL;
#else
constexpr int kQuietly = 0;
#endif

bool wouldWait() { return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR; }

void makeNonBlocking(int file) { fcntl(file, F_SETFL, fcntl(file, F_GETFL) | O_NONBLOCK); }

}  // namespace

struct ControlSocket::Client {
  explicit Client(int f) : file(f) {
    makeNonBlocking(file);
#ifdef SO_NOSIGPIPE
    const int on = 1;
    setsockopt(file, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
#endif
  }
  ~Client() { close(file); }

  bool hasLine() const { return in.find('\n') != in.npos; }
  bool isFinished() const { return isBroken || (hasEnded && out.empty() && !hasLine()); }

  // A client that doesn't take its answers is asked for no more requests, so neither side grows without end.
  bool wantsToRead() const { return !hasEnded && out.empty() && !hasLine(); }

  void receive();
  std::string firstLine() const;
  void dropLine();
  void sendOut();

  const int file;
  std::string in, out;
  bool isTooLong = false;  // the line that is coming, whose bytes are no longer kept
  bool hasEnded = false;   // sends no more
  bool isBroken = false;
  bool isAnswered = false;  // right now: its line is the first that is here
};

void ControlSocket::Client::receive() {
  char bytes[65536];
  const ssize_t n = recv(file, bytes, sizeof bytes, 0);
  if (n < 0) {
    isBroken = !wouldWait();
    return;
  }
  if (n == 0) hasEnded = true;
  in.append(bytes, size_t(n));
  if (hasLine() || in.size() <= kMostControlLine) return;
  isTooLong = true;
  in.clear();
}

// Of a line that is too long its end is left, and as many bytes before that it stays too long.
std::string ControlSocket::Client::firstLine() const {
  std::string line = in.substr(0, in.find('\n'));
  if (isTooLong) line.resize(kMostControlLine + 1);
  return line;
}

void ControlSocket::Client::dropLine() {
  in.erase(0, in.find('\n') + 1);
  isTooLong = false;
}

void ControlSocket::Client::sendOut() {
  while (!out.empty()) {
    const ssize_t n = send(file, out.data(), out.size(), kQuietly);
    if (n < 0) {
      isBroken = !wouldWait();
      return;
    }
    out.erase(0, size_t(n));
  }
}

ControlSocket::ControlSocket(const std::string& path, Answer a) : listener(path), answer(std::move(a)) {}

ControlSocket::~ControlSocket() = default;

std::vector<pollfd> ControlSocket::watched() const {
  std::vector<pollfd> all;
  if (connected.size() < kMostClients) all.push_back({listener.file(), POLLIN, 0});
  for (const Client& client : connected)
    all.push_back({client.file, short(client.wantsToRead() ? POLLIN : POLLOUT), 0});
  return all;
}

void ControlSocket::step(int milliseconds) {
  if (isStepping) return;
  isStepping = true;
  serveReady(milliseconds, answer);
  connected.remove_if([](const Client& client) { return client.isFinished(); });
  isStepping = false;
}

void ControlSocket::stepAmidst(const UrgentAnswer& urgent) { serveReady(0, urgent); }

// A request may take long, and be answered in the middle of another one; nobody leaves the list meanwhile.
void ControlSocket::serveReady(int milliseconds, const UrgentAnswer& answerTo) {
  std::vector<pollfd> files = watched();
  if (poll(files.data(), nfds_t(files.size()), milliseconds) <= 0) return;
  for (const pollfd& file : files) {
    if (file.revents == 0) continue;
    if (file.fd == listener.file()) {
      acceptAll();
      continue;
    }
    for (Client& client : connected)
      if (client.file == file.fd && !client.isAnswered) serve(client, answerTo);
  }
}

void ControlSocket::acceptAll() {
  while (connected.size() < kMostClients) {
    const int file = listener.accept();
    if (file < 0) return;
    connected.emplace_back(file);
  }
}

void ControlSocket::serve(Client& client, const UrgentAnswer& answerTo) {
  if (client.wantsToRead()) client.receive();
  if (client.out.empty() && !client.isBroken && client.hasLine()) {
    client.isAnswered = true;
    const std::optional<std::string> text = answerTo(client.firstLine());
    client.isAnswered = false;
    if (text) {
      client.dropLine();
      client.out = *text + "\n";
    }
  }
  client.sendOut();
}
