// Servers that break connections.
#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

/** A server that accepts one connection after another on one port, each served by a function; in between nobody listens. */
struct RudeServer {
  sockaddr_in address = {};
  std::thread thread;
  explicit RudeServer(const std::vector<std::function<void(int client)>>& servers) {
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    std::vector<int> sockets;  // Each of them holds the port.
    for (size_t i = 0; i < servers.size(); ++i) {
      const int yes = 1, handle = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
      socklen_t size = sizeof address;
      setsockopt(handle, SOL_SOCKET, SO_REUSEPORT, &yes, sizeof yes);
      EXPECT_EQ(bind(handle, (sockaddr*)&address, size), 0);
      getsockname(handle, (sockaddr*)&address, &size);
      sockets.push_back(handle);
    }
    listen(sockets[0], 1);
    thread = std::thread([sockets, servers] {
      for (size_t i = 0; i < servers.size(); ++i) {
        listen(sockets[i], 1);
        const int client = accept4(sockets[i], nullptr, nullptr, SOCK_CLOEXEC);
        close(sockets[i]);
        servers[i](client);
        close(client);
        if (i + 1 < servers.size()) std::this_thread::sleep_for(std::chrono::milliseconds(300));
      }
    });
  }
  ~RudeServer() { thread.join(); }
  std::string Name(const std::string& scheme) const { return scheme + "://127.0.0.1:" + std::to_string(ntohs(address.sin_port)); }
};

inline bool Send(int client, const std::string& bytes) {
  size_t at = 0;
  for (ssize_t count = 1; at < bytes.size() && count > 0; at += (size_t)std::max<ssize_t>(count, 0)) {
    count = send(client, &bytes[at], bytes.size() - at, MSG_NOSIGNAL);
  }
  return at == bytes.size();
}

/** Reads until the client has sent that text, or closes the connection. */
inline void Await(int client, const std::string& text = "nothing") {
  char c = 0;
  for (std::string read; !read.ends_with(text) && recv(client, &c, 1, 0) == 1;) read += c;
}
