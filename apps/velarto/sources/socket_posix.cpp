#include "apps/velarto/sources/socket.h"

#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

std::vector<SocketAddress> Socket_Resolve(const std::string& host, const std::string& port, std::string* error) {
  addrinfo hints = {}, *found = nullptr;
  hints.ai_socktype = SOCK_STREAM;
  const int code = getaddrinfo(host.c_str(), port.c_str(), &hints, &found);
  if (code != 0) {
    *error = gai_strerror(code);
    return {};
  }
  std::vector<SocketAddress> addresses;
  for (const addrinfo* entry = found; entry; entry = entry->ai_next) {
    const auto* const bytes = reinterpret_cast<const uint8_t*>(entry->ai_addr);
    addresses.push_back({entry->ai_family, {bytes, bytes + entry->ai_addrlen}});
  }
  freeaddrinfo(found);
  return addresses;
}

intptr_t Socket_Connect(const SocketAddress& address, std::string* error) {
  const int handle = socket(address.family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  const auto* const target = reinterpret_cast<const sockaddr*>(address.bytes.data());
  if (handle >= 0 && (connect(handle, target, static_cast<socklen_t>(address.bytes.size())) == 0 || errno == EINPROGRESS)) {
    return handle;
  }
  *error = std::strerror(errno);
  if (handle >= 0) close(handle);
  return NoSocket;
}

bool Socket_Wait(intptr_t socket, bool connecting, int milliseconds) {
  pollfd waiting = {static_cast<int>(socket), static_cast<short>(connecting ? POLLOUT : POLLIN), 0};
  return poll(&waiting, 1, milliseconds) > 0;
}

bool Socket_Connected(intptr_t socket, std::string* error) {
  int code = 0;
  socklen_t size = sizeof code;
  if (getsockopt(static_cast<int>(socket), SOL_SOCKET, SO_ERROR, &code, &size) == 0 && code == 0) return true;
  *error = std::strerror(code ? code : errno);
  return false;
}

int64_t Socket_Read(intptr_t socket, std::span<uint8_t> buffer, std::string* error) {
  ssize_t count = 0;
  do count = recv(static_cast<int>(socket), buffer.data(), buffer.size(), 0);
  while (count < 0 && errno == EINTR);
  if (count < 0) *error = std::string("the connection failed: ") + std::strerror(errno);
  return count < 0 ? -1 : count;
}

void Socket_Close(intptr_t socket) { close(static_cast<int>(socket)); }
