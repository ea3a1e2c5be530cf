#include "apps/velarto/camera/http_server.h"

#include "resources/resources.h"

#include <poll.h>

#include <array>
#include <httplib.h>

using Clock = std::chrono::steady_clock;

/** Time for a request to arrive completely, and the most bytes that it may have. */
static constexpr std::chrono::seconds RequestTime{10};
static constexpr size_t MostRequestBytes = 64 * 1024;

static constexpr const char* Boundary = "velarto-frame";

static constexpr const char* Page = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<title>velarto camera</title>
<style>
body { margin: 0; padding: 1.5rem; background: #15191e; color: #d8dde3; font: 16px/1.5 sans-serif; text-align: center; }
h1 { margin: 0 0 1rem; font-size: 1.2rem; font-weight: normal; letter-spacing: .05em; }
img { max-width: 100%; border-radius: 6px; box-shadow: 0 2px 18px #000; }
a { color: #7cc0ff; margin: 0 .6rem; }
</style>
</head>
<body>
<h1>velarto camera</h1>
<img src="/mjpeg" alt="live picture">
<p><a href="/still.jpg">still</a> <a href="/mjpeg">mjpeg</a> <a href="/stream">stream</a></p>
</body>
</html>
)";

/** A connection as the HTTP library sees it. Reading ends when the request takes too long or is too large, so that a silent
 * client can't hold a thread. */
class SocketStream : public httplib::Stream {
 public:
  explicit SocketStream(int connection) : handle(connection), deadline(Clock::now() + RequestTime) {}

  bool is_readable() const override { return true; }
  bool is_writable() const override { return true; }
  ssize_t read(char* data, size_t size) override {
    if (next == filled && !Fill()) return -1;
    const size_t count = std::min(size, filled - next);
    std::copy_n(buffer.data() + next, count, data);
    next += count;
    return static_cast<ssize_t>(count);
  }
  ssize_t write(const char* data, size_t size) override {
    const bool written = Connection_Write(handle, {reinterpret_cast<const uint8_t*>(data), size});
    return written ? static_cast<ssize_t>(size) : -1;
  }
  void get_remote_ip_and_port(std::string& ip, int& port) const override { ip.clear(), port = 0; }
  void get_local_ip_and_port(std::string& ip, int& port) const override { ip.clear(), port = 0; }
  socket_t socket() const override { return handle; }

 private:
  bool Fill() {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd waiting = {handle, POLLIN, 0};
    if (total >= MostRequestBytes || left <= 0 || poll(&waiting, 1, static_cast<int>(left)) <= 0) return false;
    const ssize_t count = recv(handle, buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (count <= 0) return false;
    next = 0;
    filled = static_cast<size_t>(count);
    total += filled;
    return true;
  }

  int handle;
  Clock::time_point deadline;
  std::array<char, 2048> buffer;
  size_t next = 0, filled = 0;  ///< Bytes of the buffer still to be read.
  size_t total = 0;             ///< Bytes read from the connection.
};

/** The HTTP library's server, on connections that the listener accepts: the library's own accept loop can't be stopped while a
 *  client is stalled, and doesn't report why a port can't be opened. */
struct HttpServer : httplib::Server {
  /** A connection carries one request: a thread that waits for the next one costs more than a new connection. */
  void Serve(int connection) {
    SocketStream stream(connection);
    bool closed = false;
    process_request(stream, true, closed, nullptr);
  }
  /** The library ends its responses when it has no open port. */
  void Mark_Open(int handle) { svr_sock_ = handle; }
};

static bool Send(httplib::DataSink* sink, std::span<const uint8_t> bytes) {
  return sink->write(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

static bool Send_Frame(httplib::DataSink* sink, const HubFrame& frame) { return Send(sink, Hub_Stream_Bytes(frame)); }

static bool Send_Part(httplib::DataSink* sink, const HubFrame& frame) {
  const auto jpeg = Hub_Jfif(frame);
  if (jpeg.empty()) return true;
  const std::string header = std::string("--") + Boundary +
                             "\r\nContent-Type: image/jpeg\r\nContent-Length: " + std::to_string(jpeg.size()) + "\r\n\r\n";
  return sink->write(header.data(), header.size()) && Send(sink, jpeg) && sink->write("\r\n", 2);
}

static void No_Store(httplib::Response* response) { response->set_header("Cache-Control", "no-store"); }

/** Answers with frames, one after another, for as long as the client takes them. */
static void Answer_Live(Hub* hub, httplib::Response* response, const std::string& type,
                        bool (*send)(httplib::DataSink* sink, const HubFrame& frame)) {
  No_Store(response);
  response->status = 200;
  const auto watch = std::make_shared<HubWatch>(hub);
  response->set_content_provider(type, [watch, send](size_t, httplib::DataSink& sink) {
    const HubFramePtr frame = Hub_Next(watch.get());
    return frame && send(&sink, *frame);
  });
}

static void Answer_Still(Hub* hub, httplib::Response* response) {
  HubWatch watch(hub);
  No_Store(response);
  while (const HubFramePtr frame = Hub_Next(&watch)) {
    const auto jpeg = Hub_Jfif(*frame);
    if (jpeg.empty()) continue;
    response->set_content(reinterpret_cast<const char*>(jpeg.data()), jpeg.size(), "image/jpeg");
    return;
  }
  response->status = 503;
}

static void Answer_Error(const httplib::Request&, httplib::Response& response) {
  if (response.body.empty()) {
    const std::string text = std::to_string(response.status) + " " + (response.status == 404 ? "not found" : "failed") + "\n";
    response.set_content(text, "text/plain");
  }
}

std::shared_ptr<HttpServer> Http_Serve(const std::shared_ptr<Listener>& listener, Hub* hub) {
  using httplib::Request, httplib::Response;
  auto server = std::make_shared<HttpServer>();
  const std::string multipart = std::string("multipart/x-mixed-replace; boundary=") + Boundary;
  server->Get("/", [](const Request&, Response& response) { response.set_content(Page, "text/html; charset=utf-8"); });
  server->Get("/still\\.jpg", [hub](const Request&, Response& response) { Answer_Still(hub, &response); });
  server->Get("/stream", [hub](const Request&, Response& response) { Answer_Live(hub, &response, MimeType, Send_Frame); });
  server->Get("/mjpeg",
              [hub, multipart](const Request&, Response& response) { Answer_Live(hub, &response, multipart, Send_Part); });
  server->set_error_handler(Answer_Error);
  server->set_payload_max_length(MostRequestBytes);
  server->Mark_Open(0);
  Listener_Serve(
      listener, [server](int socket) { server->Serve(socket); },
      "HTTP/1.1 503 Service Unavailable\r\nConnection: close\r\nContent-Length: 0\r\n\r\n");
  return server;
}

void Http_Stop(HttpServer* server) { server->Mark_Open(INVALID_SOCKET); }
