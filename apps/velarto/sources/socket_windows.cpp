#include "apps/velarto/sources/socket.h"

#include <winsock2.h>
#include <ws2tcpip.h>

static std::string Text_Of(int code) {
  char text[256] = "";
  FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, static_cast<DWORD>(code), 0, text,
                 sizeof text, nullptr);
  std::string line = text;
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r' || line.back() == '.')) line.pop_back();
  return line.empty() ? "error " + std::to_string(code) : line;
}

/** Starts the system's sockets, once a process. */
static bool Start_Sockets() {
  static const bool started = [] {
    WSADATA ignored;
    return WSAStartup(MAKEWORD(2, 2), &ignored) == 0;
  }();
  return started;
}

std::vector<SocketAddress> Socket_Resolve(const std::string& host, const std::string& port, std::string* error) {
  addrinfo hints = {}, *found = nullptr;
  hints.ai_socktype = SOCK_STREAM;
  const int code = Start_Sockets() ? getaddrinfo(host.c_str(), port.c_str(), &hints, &found) : WSASYSNOTREADY;
  if (code != 0) {
    *error = Text_Of(code);
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
  const SOCKET handle = socket(address.family, SOCK_STREAM, IPPROTO_TCP);
  const auto* const target = reinterpret_cast<const sockaddr*>(address.bytes.data());
  u_long nonBlocking = 1;
  if (handle != INVALID_SOCKET && ioctlsocket(handle, static_cast<long>(FIONBIO), &nonBlocking) == 0 &&
      (connect(handle, target, static_cast<int>(address.bytes.size())) == 0 || WSAGetLastError() == WSAEWOULDBLOCK)) {
    return static_cast<intptr_t>(handle);
  }
  *error = Text_Of(WSAGetLastError());
  if (handle != INVALID_SOCKET) closesocket(handle);
  return NoSocket;
}

bool Socket_Wait(intptr_t socket, bool connecting, int milliseconds) {
  const auto handle = static_cast<SOCKET>(socket);
  fd_set ready, failed;
  FD_ZERO(&ready);
  FD_ZERO(&failed);
  FD_SET(handle, &ready);
  FD_SET(handle, &failed);  // A refused connection shows up here only.
  timeval time = {milliseconds / 1000, milliseconds % 1000 * 1000};
  return select(0, connecting ? nullptr : &ready, connecting ? &ready : nullptr, &failed, &time) > 0;
}

bool Socket_Connected(intptr_t socket, std::string* error) {
  int code = 0, size = sizeof code;
  if (getsockopt(static_cast<SOCKET>(socket), SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&code), &size) == 0 && code == 0) {
    return true;
  }
  *error = Text_Of(code ? code : WSAGetLastError());
  return false;
}

int64_t Socket_Read(intptr_t socket, std::span<uint8_t> buffer, std::string* error) {
  const int count = recv(static_cast<SOCKET>(socket), reinterpret_cast<char*>(buffer.data()), static_cast<int>(buffer.size()), 0);
  if (count < 0) *error = "the connection failed: " + Text_Of(WSAGetLastError());
  return count < 0 ? -1 : count;
}

void Socket_Close(intptr_t socket) { closesocket(static_cast<SOCKET>(socket)); }
