/* What the TCP source asks of the system's sockets; one file a system. */
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

constexpr intptr_t NoSocket = -1;

/** An address as the system keeps it (sockaddr). */
struct SocketAddress {
  int family = 0;
  std::vector<uint8_t> bytes;
};

/** Gives the addresses of a host, in the order in which they are to be tried; none, with *error, when there are none. */
std::vector<SocketAddress> Socket_Resolve(const std::string& host, const std::string& port, std::string* error);

/** Starts to connect, without waiting. NoSocket, with *error, when that fails at once. */
intptr_t Socket_Connect(const SocketAddress& address, std::string* error);

/** Waits up to that many milliseconds: for the connection to stand or fail, or for bytes. False when nothing happened. */
bool Socket_Wait(intptr_t socket, bool connecting, int milliseconds);

/** After the wait for the connection: true when it stands, else *error. */
bool Socket_Connected(intptr_t socket, std::string* error);

/** Gives the number of bytes stored, 0 at the end of the stream, -1 with *error. */
int64_t Socket_Read(intptr_t socket, std::span<uint8_t> buffer, std::string* error);

void Socket_Close(intptr_t socket);
