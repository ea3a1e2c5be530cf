/* The system's sockets, for the TCP source; one file per platform. */
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

/** The addresses of a host, in the order in which to try them; empty with *error. */
std::vector<SocketAddress> Socket_Resolve(const std::string& host, const std::string& port, std::string* error);

/** Starts to connect, without waiting. NoSocket, with *error, when that fails at once. */
intptr_t Socket_Connect(const SocketAddress& address, std::string* error);

/** Waits up to so many milliseconds: for the connection to succeed or fail, or for bytes. False when nothing happened. */
bool Socket_Wait(intptr_t socket, bool connecting, int milliseconds);

/** After that wait: is it connected? False with *error. */
bool Socket_Connected(intptr_t socket, std::string* error);

/** Gives the number of bytes stored, 0 at the end of the stream, -1 with *error. */
int64_t Socket_Read(intptr_t socket, std::span<uint8_t> buffer, std::string* error);

void Socket_Close(intptr_t socket);
