#include "RestoreNotifier.hpp"

#include "ZpoShared.h"

#include "RegistryStore.hpp"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace zpo {
namespace {

struct Registration {
  std::string name;
  ZpoBackupRestoreCallback callback;
  unsigned long eventMask;
};

// The socket of this process and the callbacks its thread calls.
struct Listener {
  int fd = -1;
  std::string socketPath;
  std::atomic<bool> stopping{false};
  std::mutex lock;
  std::vector<Registration> registrations;
  // Held while callbacks run; once `stopping` is set under it, none starts.
  std::mutex callbackLock;
};

std::mutex gListenerLock;
std::shared_ptr<Listener> gListener;
bool gExitHandlerInstalled = false;  // guarded by gListenerLock

bool socketAddress(const std::string& path, sockaddr_un* address) {
  std::memset(address, 0, sizeof *address);
  address->sun_family = AF_UNIX;
  if (path.size() >= sizeof address->sun_path) return false;
  std::memcpy(address->sun_path, path.c_str(), path.size() + 1);
  return true;
}

void listen(std::shared_ptr<Listener> listener) {
  for (;;) {
    RestoreEvent event = 0;
    const ssize_t received = ::recv(listener->fd, &event, sizeof event, 0);
    if (listener->stopping) break;
    if (received != static_cast<ssize_t>(sizeof event)) {
      if (received < 0 && errno != EINTR) break;
      continue;
    }
    std::vector<Registration> wanted;
    {
      std::lock_guard<std::mutex> hold(listener->lock);
      for (const Registration& registration : listener->registrations) {
        if ((registration.eventMask & event) != 0) wanted.push_back(registration);
      }
    }
    std::lock_guard<std::mutex> running(listener->callbackLock);
    if (listener->stopping) break;
    for (const Registration& registration : wanted) registration.callback(static_cast<unsigned long>(event));
  }
  ::close(listener->fd);
}

// Runs at exit before the static objects made before the listener started
// (the registry connection, the callers' own) are destroyed: waits for a
// running callback to return and lets no other start.
void stopCallbacksAtExit() {
  std::shared_ptr<Listener> listener;
  {
    std::lock_guard<std::mutex> hold(gListenerLock);
    listener = gListener;
  }
  if (!listener) return;
  std::lock_guard<std::mutex> running(listener->callbackLock);
  listener->stopping = true;
}

std::shared_ptr<Listener> startListener(std::string* error) {
  const std::string root = currentStateRoot();
  if (root.empty()) {
    *error = "no state directory";
    return nullptr;
  }
  auto listener = std::make_shared<Listener>();
  listener->socketPath = root + "/notify/" + std::to_string(getpid()) + ".sock";
  sockaddr_un address;
  if (!socketAddress(listener->socketPath, &address)) {
    *error = "socket path too long";
    return nullptr;
  }
  listener->fd = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (listener->fd < 0) return nullptr;
  ::unlink(listener->socketPath.c_str());  // left by an earlier process with this pid
  if (::bind(listener->fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    ::close(listener->fd);
    return nullptr;
  }
  std::thread(listen, listener).detach();
  if (!gExitHandlerInstalled) gExitHandlerInstalled = std::atexit(stopCallbacksAtExit) == 0;
  return listener;
}

// A child of fork has no listening thread: it forgets the parent's listener
// without touching the socket, which still belongs to the parent.
void lockListenerBeforeFork() { gListenerLock.lock(); }
void unlockListenerInParent() { gListenerLock.unlock(); }
void forgetListenerInChild() {
  if (gListener) {
    ::close(gListener->fd);
    gListener.reset();
  }
  gListenerLock.unlock();
}

const int gForkHandlers = pthread_atfork(lockListenerBeforeFork, unlockListenerInParent, forgetListenerInChild);

}  // namespace

int notifyRegisteredProcesses(const std::string& canonicalRoot, RestoreEvent event, std::string* error) {
  const std::string folder = canonicalRoot + "/notify";
  DIR* directory = opendir(folder.c_str());
  if (directory == nullptr) {
    if (errno == ENOENT) return 0;  // nobody ever registered
    *error = "cannot open " + folder + ": " + std::strerror(errno);
    return -1;
  }
  std::vector<std::string> sockets;
  for (;;) {
    errno = 0;  // readdir reports the end and an error alike by NULL
    const dirent* item = readdir(directory);
    if (item == nullptr) break;
    const std::string name = item->d_name;
    if (name.size() > 5 && name.compare(name.size() - 5, 5, ".sock") == 0) sockets.push_back(folder + "/" + name);
  }
  const int readError = errno;
  closedir(directory);
  if (readError != 0) {
    *error = "cannot read " + folder + ": " + std::strerror(readError);
    return -1;
  }
  const int fd = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (fd < 0) {
    *error = std::string("cannot create a socket: ") + std::strerror(errno);
    return -1;
  }
  const RestoreEvent message = event;
  int told = 0;
  for (const std::string& path : sockets) {
    sockaddr_un address;
    if (!socketAddress(path, &address)) continue;
    if (::sendto(fd, &message, sizeof message, MSG_DONTWAIT, reinterpret_cast<sockaddr*>(&address),
                 sizeof address) == static_cast<ssize_t>(sizeof message)) {
      ++told;
    } else if (errno == ECONNREFUSED || errno == ENOENT) {
      ::unlink(path.c_str());  // nobody listens there any more
    }
  }
  ::close(fd);
  return told;
}

void forgetRestoreCallbacks() {
  (void)gForkHandlers;
  std::lock_guard<std::mutex> hold(gListenerLock);
  if (!gListener) return;
  gListener->stopping = true;
  ::unlink(gListener->socketPath.c_str());
  ::shutdown(gListener->fd, SHUT_RDWR);  // wakes the thread, which closes the socket
  gListener.reset();
}

std::vector<std::string> restoreRegistrations() {
  std::lock_guard<std::mutex> hold(gListenerLock);
  std::vector<std::string> lines;
  if (!gListener) return lines;
  std::lock_guard<std::mutex> holdRegistrations(gListener->lock);
  for (const auto& registration : gListener->registrations) {
    lines.push_back(registration.name + " " + std::to_string(registration.eventMask));
  }
  return lines;
}

}  // namespace zpo

extern "C" ZpoStatus ZpoNotifyRegBackupAndRestore(const char* name, ZpoBackupRestoreCallback callback,
                                                  unsigned long value) {
  if (name == nullptr || name[0] == '\0' || callback == nullptr) return ZPO_ERR_INVALID_ARGUMENT;
  std::lock_guard<std::mutex> hold(zpo::gListenerLock);
  if (!zpo::gListener) {
    std::string error;
    zpo::gListener = zpo::startListener(&error);
    if (!zpo::gListener) return ZPO_ERR_IO;
  }
  std::lock_guard<std::mutex> holdRegistrations(zpo::gListener->lock);
  auto& registrations = zpo::gListener->registrations;
  // A name registers once: registering it again replaces its callback and mask.
  for (auto& registration : registrations) {
    if (registration.name == name) {
      registration.callback = callback;
      registration.eventMask = value;
      return ZPO_OK;
    }
  }
  registrations.push_back(zpo::Registration{name, callback, value});
  return ZPO_OK;
}
