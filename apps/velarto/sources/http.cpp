#include "apps/velarto/sources/http_transfer.h"
#include "apps/velarto/sources/multipart.h"
#include "apps/velarto/sources/part_frame.h"
#include "apps/velarto/sources/source.h"

#include <algorithm>
#include <cstdlib>

static constexpr size_t ChunkSize = 65536;

struct HttpStream {
  HttpTransfer* transfer = nullptr;
  bool inParts = false;  ///< The fields below are for a multipart body.
  Multipart parts;
  PartConverter converter;
  std::vector<uint8_t> chunk;  ///< For reading the body.
  std::vector<uint8_t> frame;  ///< Of the last part; `given` bytes of it have been read.
  size_t given = 0;
};

static std::string Setting(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

/** The address; user and password come from the environment if it has none. */
static Url Url_Of(const std::string& name) {
  Url url = Url_Split(name);
  if (url.user.empty()) url.user = Setting("VELARTO_USER");
  if (url.password.empty() && !url.user.empty()) url.password = Setting("VELARTO_PASSWORD");
  return url;
}

bool Http_Open(const std::string& name, Source* source, std::string* error) {
  std::string reason;
  HttpTransfer* const transfer = Transfer_Open(Url_Of(name), source->stop, &reason);
  if (!transfer) {
    *error = "can't read " + Source_Title(name) + ": " + reason;
    return false;
  }
  source->http = new HttpStream;
  source->http->transfer = transfer;
  source->http->inParts = Multipart_Type(Transfer_Type(*transfer), &source->http->parts.boundary);
  if (source->http->inParts) JDEC_Init();  // Its tables are needed to compress pictures.
  source->http->chunk.resize(ChunkSize);
  return true;
}

/** Takes the next part, and makes a frame of it if possible. False when more bytes are needed. */
static bool Take_Part(HttpStream* stream) {
  std::span<const uint8_t> part;
  if (!Multipart_Next(&stream->parts, &part)) return false;
  stream->frame.clear();
  stream->given = 0;
  Part_To_Frame(&stream->converter, part, &stream->frame);
  return true;
}

int64_t Http_Read(Source* source, std::span<uint8_t> buffer, std::string* error) {
  HttpStream* const stream = source->http;
  if (!stream->inParts) return Transfer_Read(stream->transfer, buffer, error);
  while (stream->given == stream->frame.size()) {
    if (source->stop->load()) return 0;
    if (Take_Part(stream)) continue;
    const int64_t count = Transfer_Read(stream->transfer, stream->chunk, error);
    if (count <= 0) return count;
    Multipart_Add(&stream->parts, {stream->chunk.data(), static_cast<size_t>(count)});
  }
  const size_t count = std::min(buffer.size(), stream->frame.size() - stream->given);
  std::copy_n(stream->frame.begin() + static_cast<std::ptrdiff_t>(stream->given), count, buffer.begin());
  stream->given += count;
  return static_cast<int64_t>(count);
}

bool Http_Whole(const Source& source) { return Transfer_Whole(*source.http->transfer); }

void Http_Close(Source* source) {
  if (!source->http) return;
  Transfer_Close(source->http->transfer);
  const bool started = source->http->inParts;
  delete source->http;  // With its decoder, which needs the library.
  if (started) JDEC_Exit();
  source->http = nullptr;
}
