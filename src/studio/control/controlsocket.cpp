#include "studio/control/controlsocket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <utility>

#include "kit/control/controlrequest.h"
#include "kit/errors.h"

namespace {

constexpr size_t kMostClients = 16;

#ifdef MSG_NOSIGNAL
constexpr int kQuietly = MSG_NOSIGNAL;
#else
constexpr int kQuietly = 0;
#endif

bool wouldWait() { return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR; }

void makeNonBlocking(int file) {
  fcntl(file, F_SETFL, fcntl(file, F_GETFL) | O_NONBLOCK);
  fcntl(file, F_SETFD, FD_CLOEXEC);
}

int newSocket() {
  const int made = socket(AF_UNIX, SOCK_STREAM, 0);
  if (made < 0) throw KitError(std::strerror(errno));
  makeNonBlocking(made);
  return made;
}

sockaddr_un addressOf(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.empty() || path.size() >= sizeof address.sun_path)
    throw KitError(path, "a socket's name has 1 to " + std::to_string(sizeof address.sun_path - 1) + " bytes");
  std::memcpy(address.sun_path, path.data(), path.size());
  return address;
}

// The file is never open to others, not even for a moment.
bool bindPrivately(int file, const sockaddr_un& address) {
  const mode_t before = umask(S_IXUSR | S_IRWXG | S_IRWXO);
  const bool bound = bind(file, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  const int error = errno;
  umask(before);
  errno = error;
  return bound;
}

bool answers(const sockaddr_un& address) {
  const int file = newSocket();
  const bool connected = connect(file, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  const bool isDead = !connected && errno == ECONNREFUSED;
  close(file);
  return !isDead;
}

// A socket of this user that nobody listens to any more; anything else is an error.
void removeDeadSocket(const std::string& path, const sockaddr_un& address) {
  struct stat there;
  if (lstat(path.c_str(), &there) != 0) throw KitError(path, std::strerror(errno));
  if (!S_ISSOCK(there.st_mode)) throw KitError(path, "there is a file of that name, which is no socket");
  if (there.st_uid != geteuid()) throw KitError(path, "there is a socket of another user");
  if (answers(address)) throw KitError(path, "somebody listens there already");
  if (unlink(path.c_str()) != 0) throw KitError(path, std::strerror(errno));
}

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
  std::optional<std::string> takeLine();
  void sendOut();

  const int file;
  std::string in, out;
  bool isTooLong = false;  // the line that is coming, whose bytes are no longer kept
  bool hasEnded = false;   // sends no more
  bool isBroken = false;
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
std::optional<std::string> ControlSocket::Client::takeLine() {
  const size_t end = in.find('\n');
  if (end == in.npos) return std::nullopt;
  std::string line = in.substr(0, end);
  in.erase(0, end + 1);
  if (std::exchange(isTooLong, false)) line.resize(kMostControlLine + 1);
  return line;
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

ControlSocket::ControlSocket(const std::string& p, Answer a) : path(p), answer(std::move(a)) {
  listener = newSocket();
  try {
    listenAt();
  } catch (...) {
    close(listener);
    throw;
  }
}

void ControlSocket::listenAt() {
  const sockaddr_un address = addressOf(path);
  bool bound = bindPrivately(listener, address);
  if (!bound && errno == EADDRINUSE) {
    removeDeadSocket(path, address);
    bound = bindPrivately(listener, address);
  }
  if (!bound) throw KitError(path, std::strerror(errno));
  struct stat made;
  if (lstat(path.c_str(), &made) == 0) {
    device = made.st_dev;
    inode = made.st_ino;
  }
  if (listen(listener, int(kMostClients)) != 0) throw KitError(path, std::strerror(errno));
}

ControlSocket::~ControlSocket() {
  close(listener);
  struct stat there;
  if (lstat(path.c_str(), &there) == 0 && there.st_dev == device && there.st_ino == inode) unlink(path.c_str());
}

std::vector<pollfd> ControlSocket::watched() const {
  std::vector<pollfd> all;
  if (connected.size() < kMostClients) all.push_back({listener, POLLIN, 0});
  for (const auto& client : connected)
    all.push_back({client->file, short(client->wantsToRead() ? POLLIN : POLLOUT), 0});
  return all;
}

void ControlSocket::step(int milliseconds) {
  if (isStepping) return;
  std::vector<pollfd> files = watched();
  if (poll(files.data(), nfds_t(files.size()), milliseconds) <= 0) return;
  isStepping = true;
  for (const pollfd& file : files) {
    if (file.revents == 0) continue;
    if (file.fd == listener) {
      acceptAll();
      continue;
    }
    for (const auto& client : connected)
      if (client->file == file.fd) serve(*client);
  }
  std::erase_if(connected, [](const auto& client) { return client->isFinished(); });
  isStepping = false;
}

void ControlSocket::acceptAll() {
  while (connected.size() < kMostClients) {
    const int file = accept(listener, nullptr, nullptr);
    if (file < 0) return;
    connected.push_back(std::make_unique<Client>(file));
  }
}

void ControlSocket::serve(Client& client) {
  if (client.wantsToRead()) client.receive();
  if (client.out.empty() && !client.isBroken)
    if (const auto line = client.takeLine()) client.out = answer(*line) + "\n";
  client.sendOut();
}
