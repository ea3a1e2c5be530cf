#include "apps/velarto/sources/socket.h"
#include "apps/velarto/sources/source.h"

#include <future>
#include <thread>

using Clock = std::chrono::steady_clock;

static constexpr size_t SchemeLength = 6;  // tcp://
/** Milliseconds after which a wait checks the stop flag. */
static constexpr int StopLook = 50;

/** HOST:PORT or [HOST]:PORT, an IPv6 address in brackets. */
static bool Split_Address(const std::string& name, std::string* host, std::string* port) {
  const std::string address = name.substr(SchemeLength);
  const size_t colon = address.rfind(':');
  if (colon == std::string::npos) return false;
  *host = address.substr(0, colon);
  *port = address.substr(colon + 1);
  const bool bracketed = host->size() > 2 && host->front() == '[' && host->back() == ']';
  if (bracketed) *host = host->substr(1, host->size() - 2);
  if (host->empty() || (!bracketed && host->find(':') != std::string::npos)) return false;
  if (port->empty() || port->size() > 5 || port->find_first_not_of("0123456789") != std::string::npos) return false;
  const int number = std::stoi(*port);
  return number >= 1 && number <= 65535;
}

struct Resolved {
  std::vector<SocketAddress> addresses;
  std::string reason;  ///< When there are none.
};

/** Looks the host up on another thread: the system may take long, and doesn't know of the stop flag. */
static Resolved Resolve(const std::string& host, const std::string& port, const Source& source, Clock::time_point deadline) {
  std::packaged_task<Resolved()> task([host, port] {
    Resolved resolved;
    resolved.addresses = Socket_Resolve(host, port, &resolved.reason);
    return resolved;
  });
  auto answer = task.get_future();
  std::thread(std::move(task)).detach();
  while (answer.wait_for(std::chrono::milliseconds(StopLook)) != std::future_status::ready) {
    if (source.stop->load()) return {{}, "stopped"};
    if (Clock::now() >= deadline) return {{}, "looking up the host takes too long"};
  }
  return answer.get();
}

/** Waits until the connection is made, fails, or the time is up. */
static bool Await_Connection(const Source& source, intptr_t socket, Clock::time_point deadline, std::string* error) {
  while (!Socket_Wait(socket, true, StopLook)) {
    *error = source.stop->load() ? "stopped" : "no answer within 5 seconds";
    if (source.stop->load() || Clock::now() >= deadline) return false;
  }
  return Socket_Connected(socket, error);
}

bool Tcp_Open(const std::string& name, Source* source, std::string* error) {
  std::string host, port, reason;
  if (!Split_Address(name, &host, &port)) {
    *error = Source_Title(name) + ": the address must have the form tcp://HOST:PORT";
    return false;
  }
  const auto deadline = Clock::now() + ConnectTimeOut;
  const Resolved resolved = Resolve(host, port, *source, deadline);
  reason = resolved.reason;
  for (const SocketAddress& address : resolved.addresses) {
    const intptr_t socket = Socket_Connect(address, &reason);
    if (socket == NoSocket) continue;
    if (Await_Connection(*source, socket, deadline, &reason)) {
      source->handle = socket;
      return true;
    }
    Socket_Close(socket);
  }
  *error = "can't connect to " + Source_Title(name) + ": " + reason;
  return false;
}

int64_t Tcp_Read(Source* source, std::span<uint8_t> buffer, std::string* error) {
  const auto deadline = Clock::now() + StallTimeOut;
  while (!source->stop->load()) {
    if (Socket_Wait(source->handle, false, StopLook)) return Socket_Read(source->handle, buffer, error);
    if (Clock::now() < deadline) continue;
    *error = std::string("no data for ") + std::to_string(StallTimeOut.count()) + " seconds";
    return -1;
  }
  return 0;
}

void Tcp_Close(Source* source) {
  if (source->handle != NoSocket) Socket_Close(source->handle);
  source->handle = NoSocket;
}
