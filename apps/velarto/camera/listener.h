/* A TCP port, and a thread for each connection to it. */
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

/** Connections at a time; more are refused. */
constexpr size_t MostConnections = 256;

/** Shared by the threads; freed with its last owner. */
struct Listener;

/** Serves one connection; the socket is closed afterwards. */
using ConnectionServer = std::function<void(int socket)>;

/** Opens the port at an address (a name, or an IPv4 or IPv6 address); 0: any free port. Null with *error. */
std::shared_ptr<Listener> Listener_Open(const std::string& address, uint16_t port, std::string* error);

/** "HOST:PORT" as it is written in an address, with the port that was opened. */
std::string Listener_Name(const Listener& listener);

/** Starts to accept connections. refusal: sent to those beyond MostConnections; may be empty. */
void Listener_Serve(const std::shared_ptr<Listener>& listener, ConnectionServer server, const std::string& refusal);

/** Accepts no more connections, ends the open ones, and waits until their threads have ended. */
void Listener_Stop(Listener* listener);

/** Writes all bytes, however slowly the other side takes them, unless it takes nothing for 30 seconds. False: the connection is
 *  broken. */
bool Connection_Write(int socket, std::span<const uint8_t> bytes);
