#include "studio/control/privatelistener.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "kit/errors.h"

namespace {

constexpr int kMostWaiting = 16;

int newSocket() {
  const int made = socket(AF_UNIX, SOCK_STREAM, 0);
  if (made < 0) throw KitError(std::strerror(errno));
  fcntl(made, F_SETFL, fcntl(made, F_GETFL) | O_NONBLOCK);
  fcntl(made, F_SETFD, FD_CLOEXEC);
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

PrivateListener::PrivateListener(const std::string& p) : path(p) {
  listener = newSocket();
  try {
    listenAt();
  } catch (...) {
    close(listener);
    throw;
  }
}

void PrivateListener::listenAt() {
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
  if (listen(listener, kMostWaiting) != 0) throw KitError(path, std::strerror(errno));
}

PrivateListener::~PrivateListener() {
  close(listener);
  struct stat there;
  if (lstat(path.c_str(), &there) == 0 && there.st_dev == device && there.st_ino == inode) unlink(path.c_str());
}

int PrivateListener::accept() {
  const int made = ::accept(listener, nullptr, nullptr);
  if (made >= 0) fcntl(made, F_SETFD, FD_CLOEXEC);
  return made;
}
