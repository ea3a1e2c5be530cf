#include "apps/velarto/sources/http_transfer.h"
#include "apps/velarto/sources/source.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <curl/curl.h>
#include <vector>

using Clock = std::chrono::steady_clock;

/** Milliseconds after which a wait checks the stop flag. */
static constexpr int StopLook = 50;
/** Bytes held for a slow reader; at this number the transfer pauses. */
static constexpr size_t HeldLimit = 256 * 1024;
/** Bytes of all response headers, those of redirections included. */
static constexpr size_t HeaderLimit = 256 * 1024;
static constexpr long RedirectLimit = 5;

struct HttpTransfer {
  CURLM* multi = nullptr;
  CURL* easy = nullptr;
  const std::atomic<bool>* stop = nullptr;
  std::vector<uint8_t> held;  ///< Bytes not yet read, from `begin` on.
  size_t begin = 0;
  size_t headerBytes = 0;
  bool paused = false;    ///< The transfer waits for room in `held`.
  bool accepted = false;  ///< The header of a successful response has arrived.
  bool done = false;
  CURLcode result = CURLE_OK;  ///< Once done.
  std::array<char, CURL_ERROR_SIZE> text = {};
};

static size_t Held(const HttpTransfer& transfer) { return transfer.held.size() - transfer.begin; }

static long Status(const HttpTransfer& transfer) {
  long status = 0;
  curl_easy_getinfo(transfer.easy, CURLINFO_RESPONSE_CODE, &status);
  return status;
}

/* ---- Called by libcurl ---------------------------------------------------------------------------------------------------- */

/** A line of a header. Taking fewer bytes than given ends the transfer. */
static size_t Take_Header(const char* line, size_t, size_t count, void* user) {
  auto* const transfer = static_cast<HttpTransfer*>(user);
  transfer->headerBytes += count;
  if (transfer->headerBytes > HeaderLimit) return 0;
  const bool blank = line[0] == '\r' || line[0] == '\n';
  if (blank && Status(*transfer) / 100 == 2) transfer->accepted = true;
  return count;
}

static size_t Take_Body(const char* data, size_t, size_t count, void* user) {
  auto* const transfer = static_cast<HttpTransfer*>(user);
  if (!transfer->accepted) return 0;
  if (Held(*transfer) > 0 && Held(*transfer) + count > HeldLimit) {
    transfer->paused = true;
    return CURL_WRITEFUNC_PAUSE;
  }
  transfer->held.insert(transfer->held.end(), data, data + count);
  return count;
}

/* ---- The transfer --------------------------------------------------------------------------------------------------------- */

static bool Set_Options(HttpTransfer* transfer, const Url& url) {
  CURL* const easy = transfer->easy;
  const auto connectTimeOut = static_cast<long>(std::chrono::milliseconds(ConnectTimeOut).count());
  bool good = true;
  const auto set = [&](CURLoption option, auto value) { good = good && curl_easy_setopt(easy, option, value) == CURLE_OK; };
  set(CURLOPT_URL, url.address.c_str());
  set(CURLOPT_USERAGENT, "velarto/" VELARTO_VERSION);
  set(CURLOPT_PROTOCOLS_STR, "http,https");
  set(CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
  set(CURLOPT_FOLLOWLOCATION, 1L);
  set(CURLOPT_MAXREDIRS, RedirectLimit);
  set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  set(CURLOPT_FAILONERROR, 1L);
  set(CURLOPT_CONNECTTIMEOUT_MS, connectTimeOut);
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_QUICK_EXIT, 1L);  // A stop doesn't wait for the resolver.
  set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
  set(CURLOPT_ERRORBUFFER, transfer->text.data());
  set(CURLOPT_HEADERFUNCTION, Take_Header);
  set(CURLOPT_HEADERDATA, transfer);
  set(CURLOPT_WRITEFUNCTION, Take_Body);
  set(CURLOPT_WRITEDATA, transfer);
  if (url.user.empty() && url.password.empty()) return good;
  set(CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_BASIC | CURLAUTH_DIGEST));
  set(CURLOPT_USERNAME, url.user.c_str());
  set(CURLOPT_PASSWORD, url.password.c_str());
  return good;
}

/** Transfers what it can without waiting; if that was nothing, waits up to StopLook. */
static void Drive(HttpTransfer* transfer) {
  int running = 0, messages = 0;
  if (curl_multi_perform(transfer->multi, &running) != CURLM_OK) {
    transfer->done = true;
    transfer->result = CURLE_FAILED_INIT;
  }
  while (const CURLMsg* const message = curl_multi_info_read(transfer->multi, &messages)) {
    if (message->msg != CURLMSG_DONE) continue;
    transfer->done = true;
    transfer->result = message->data.result;
  }
  if (!transfer->done && Held(*transfer) == 0) curl_multi_poll(transfer->multi, nullptr, 0, StopLook, nullptr);
}

static std::string Seconds_Text(std::chrono::seconds time) { return std::to_string(time.count()) + " seconds"; }

struct StatusText {
  long status;
  const char* text;
};
static constexpr StatusText statusTexts[] = {
    {401, ": user or password is missing or wrong"},
    {403, ": access is forbidden"},
    {404, ": nothing at this address"},
    {503, ": it is not ready or has too many clients"},
};

static std::string Refusal_Text(long status) {
  std::string text = "the server answered " + std::to_string(status);
  for (const StatusText& entry : statusTexts) {
    if (entry.status == status) text += entry.text;
  }
  return text;
}

/** Why there is no successful response, or why it ended. */
static std::string Failure_Text(const HttpTransfer& transfer) {
  if (transfer.headerBytes > HeaderLimit) return "the header of the response is too long";
  if (transfer.result == CURLE_OPERATION_TIMEDOUT) return "no answer within " + Seconds_Text(ConnectTimeOut);
  const long status = Status(transfer);
  const bool answered =
      transfer.result == CURLE_HTTP_RETURNED_ERROR || transfer.result == CURLE_WRITE_ERROR || transfer.result == CURLE_OK;
  if (!transfer.accepted && answered) return Refusal_Text(status);
  return transfer.text[0] ? transfer.text.data() : curl_easy_strerror(transfer.result);
}

/** Runs the transfer until the header of a successful response has arrived. */
static bool Await_Header(HttpTransfer* transfer, std::string* error) {
  const auto deadline = Clock::now() + StallTimeOut;
  while (!transfer->accepted && !transfer->done) {
    if (transfer->stop->load()) {
      *error = "stopped";
      return false;
    }
    if (Clock::now() >= deadline) {
      *error = "no answer within " + Seconds_Text(StallTimeOut);
      return false;
    }
    Drive(transfer);
  }
  if (transfer->accepted) return true;
  *error = Failure_Text(*transfer);
  return false;
}

/* ---- The operations ------------------------------------------------------------------------------------------------------- */

static bool Start_Library() {
  static const bool started = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
  return started;
}

HttpTransfer* Transfer_Open(const Url& url, const std::atomic<bool>* stop, std::string* error) {
  *error = "no memory for a connection";
  if (!Start_Library()) return nullptr;
  auto* const transfer = new HttpTransfer;
  transfer->stop = stop;
  transfer->multi = curl_multi_init();
  transfer->easy = curl_easy_init();
  if (transfer->multi && transfer->easy && Set_Options(transfer, url) &&
      curl_multi_add_handle(transfer->multi, transfer->easy) == CURLM_OK && Await_Header(transfer, error)) {
    return transfer;
  }
  Transfer_Close(transfer);
  return nullptr;
}

static size_t Take_Held(HttpTransfer* transfer, std::span<uint8_t> buffer) {
  const size_t count = std::min(Held(*transfer), buffer.size());
  std::copy_n(transfer->held.begin() + static_cast<std::ptrdiff_t>(transfer->begin), count, buffer.begin());
  transfer->begin += count;
  if (Held(*transfer) > 0) return count;
  transfer->held.clear();
  transfer->begin = 0;
  if (!transfer->paused) return count;
  transfer->paused = false;
  curl_easy_pause(transfer->easy, CURLPAUSE_CONT);
  return count;
}

int64_t Transfer_Read(HttpTransfer* transfer, std::span<uint8_t> buffer, std::string* error) {
  const auto deadline = Clock::now() + StallTimeOut;
  while (!transfer->stop->load()) {
    if (Held(*transfer) > 0) return static_cast<int64_t>(Take_Held(transfer, buffer));
    if (transfer->done && transfer->result == CURLE_OK) return 0;
    if (transfer->done || Clock::now() >= deadline) {
      *error = transfer->done ? Failure_Text(*transfer) : "no data for " + Seconds_Text(StallTimeOut);
      return -1;
    }
    Drive(transfer);
  }
  return 0;
}

std::string Transfer_Type(const HttpTransfer& transfer) {
  const char* type = nullptr;
  curl_easy_getinfo(transfer.easy, CURLINFO_CONTENT_TYPE, &type);
  return type ? type : "";
}

bool Transfer_Whole(const HttpTransfer& transfer) {
  curl_off_t length = -1;
  curl_easy_getinfo(transfer.easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
  return transfer.done && transfer.result == CURLE_OK && Held(transfer) == 0 && length >= 0;
}

void Transfer_Close(HttpTransfer* transfer) {
  if (!transfer) return;
  if (transfer->multi && transfer->easy) curl_multi_remove_handle(transfer->multi, transfer->easy);
  curl_easy_cleanup(transfer->easy);
  curl_multi_cleanup(transfer->multi);
  delete transfer;
}
