#include "apps/velarto/camera/listener.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <set>
#include <thread>

/** A client must take at least one byte in so many milliseconds. */
static constexpr int StallTime = 30000;
/** Milliseconds until the next try when the system is out of handles or memory. */
static constexpr int ShortageWait = 50;
/** Bytes that the system may buffer for a client; more would only make the picture late. */
static constexpr int SendBuffer = 256 * 1024;

struct Listener {
  int socket = -1;
  std::string host;
  uint16_t port = 0;
  ConnectionServer server;
  std::string refusal;
  std::mutex lock;  ///< Guards what follows.
  std::condition_variable changed;
  std::set<int> connections;
  size_t threads = 0;  ///< Of connections, and the one that accepts them.
  bool stopped = false;

  ~Listener() {
    if (socket >= 0) close(socket);
  }
};

/* ---- The port ------------------------------------------------------------------------------------------------------------- */

static int Open_Socket(const addrinfo& address) {
  const int handle = socket(address.ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (handle < 0) return -1;
  const int on = 1;
  setsockopt(handle, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  if (bind(handle, address.ai_addr, address.ai_addrlen) == 0 && listen(handle, SOMAXCONN) == 0) return handle;
  const int reason = errno;
  close(handle);
  errno = reason;
  return -1;
}

static uint16_t Port_Of(int handle) {
  sockaddr_storage address = {};
  socklen_t size = sizeof address;
  getsockname(handle, reinterpret_cast<sockaddr*>(&address), &size);
  if (address.ss_family == AF_INET6) return ntohs(reinterpret_cast<const sockaddr_in6*>(&address)->sin6_port);
  return ntohs(reinterpret_cast<const sockaddr_in*>(&address)->sin_port);
}

static std::string Host_Port(const std::string& host, uint16_t port) {
  return (host.find(':') == std::string::npos ? host : "[" + host + "]") + ":" + std::to_string(port);
}

std::string Listener_Name(const Listener& listener) { return Host_Port(listener.host, listener.port); }

std::shared_ptr<Listener> Listener_Open(const std::string& address, uint16_t port, std::string* error) {
  addrinfo hints = {}, *found = nullptr;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
  *error = "can't listen on " + Host_Port(address, port) + ": ";
  const int code = getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &found);
  if (code != 0) {
    *error += gai_strerror(code);
    return nullptr;
  }
  auto listener = std::make_shared<Listener>();
  int reason = 0;
  for (const addrinfo* entry = found; entry && listener->socket < 0; entry = entry->ai_next) {
    listener->socket = Open_Socket(*entry);
    if (listener->socket < 0) reason = errno;
  }
  freeaddrinfo(found);
  if (listener->socket < 0) {
    *error += std::strerror(reason);
    return nullptr;
  }
  listener->host = address;
  listener->port = Port_Of(listener->socket);
  return listener;
}

/* ---- Connections ---------------------------------------------------------------------------------------------------------- */

static void End_Thread(Listener* listener) {
  const std::lock_guard held(listener->lock);
  --listener->threads;
  listener->changed.notify_all();
}

static void Serve_Connection(const std::shared_ptr<Listener>& listener, int handle) {
  listener->server(handle);
  {
    // Once closed, the handle may belong to another connection.
    const std::lock_guard held(listener->lock);
    listener->connections.erase(handle);
    close(handle);
  }
  End_Thread(listener.get());
}

/** Reads what the client has sent before closing: with unread bytes the system would discard the answer. */
static void Refuse(int handle, const std::string& refusal) {
  char scratch[4096];
  send(handle, refusal.data(), refusal.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  shutdown(handle, SHUT_WR);
  while (recv(handle, scratch, sizeof scratch, MSG_DONTWAIT) > 0) continue;
  close(handle);
}

static bool Enter(Listener* listener, int handle) {
  const std::lock_guard held(listener->lock);
  if (listener->stopped || listener->connections.size() >= MostConnections) return false;
  listener->connections.insert(handle);
  ++listener->threads;
  return true;
}

static void Leave(Listener* listener, int handle) {
  const std::lock_guard held(listener->lock);
  listener->connections.erase(handle);
  --listener->threads;
}

static void Take_Connection(const std::shared_ptr<Listener>& listener, int handle) {
  if (!Enter(listener.get(), handle)) {
    Refuse(handle, listener->refusal);
    return;
  }
  const int on = 1;
  setsockopt(handle, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  setsockopt(handle, SOL_SOCKET, SO_SNDBUF, &SendBuffer, sizeof SendBuffer);
  try {
    std::thread(Serve_Connection, listener, handle).detach();
  } catch (const std::system_error&) {
    Leave(listener.get(), handle);
    Refuse(handle, listener->refusal);
  }
}

static bool Stopped(Listener* listener) {
  const std::lock_guard held(listener->lock);
  return listener->stopped;
}

static void Run_Listener(const std::shared_ptr<Listener>& listener) {
  while (!Stopped(listener.get())) {
    const int handle = accept4(listener->socket, nullptr, nullptr, SOCK_CLOEXEC);
    if (handle >= 0) {
      Take_Connection(listener, handle);
      continue;
    }
    const bool exhausted = errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM;
    if (exhausted) poll(nullptr, 0, ShortageWait);
  }
  End_Thread(listener.get());
}

void Listener_Serve(const std::shared_ptr<Listener>& listener, ConnectionServer server, const std::string& refusal) {
  listener->server = std::move(server);
  listener->refusal = refusal;
  listener->threads = 1;
  std::thread(Run_Listener, listener).detach();
}

void Listener_Stop(Listener* listener) {
  std::unique_lock held(listener->lock);
  listener->stopped = true;
  shutdown(listener->socket, SHUT_RDWR);
  for (const int handle : listener->connections) shutdown(handle, SHUT_RDWR);
  listener->changed.wait(held, [listener] { return listener->threads == 0; });
}

bool Connection_Write(int socket, std::span<const uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count >= 0) {
      bytes = bytes.subspan(static_cast<size_t>(count));
      continue;
    }
    if (errno == EINTR) continue;
    if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
    pollfd waiting = {socket, POLLOUT, 0};
    if (poll(&waiting, 1, StallTime) == 0) return false;
  }
  return true;
}
