#include "apps/velarto/sources/source.h"

#include "apps/velarto/sources/url.h"

#include <filesystem>

static constexpr const char* TcpScheme = "tcp://";

static SourceKind Kind_Of(const std::string& name) {
  if (name == "-") return SourceKind::Pipe;
  if (name.starts_with(TcpScheme)) return SourceKind::Tcp;
  if (Url_Is_Http(name)) return SourceKind::Http;
  std::error_code ignored;
  const auto type = std::filesystem::status(name, ignored).type();
  const bool pipe = type == std::filesystem::file_type::fifo || type == std::filesystem::file_type::character ||
                    type == std::filesystem::file_type::socket;
  return pipe ? SourceKind::Pipe : SourceKind::File;
}

bool Source_Live(const std::string& name) { return Kind_Of(name) != SourceKind::File; }

std::string Source_Title(const std::string& name) { return name == "-" ? "standard input" : Url_Split(name).address; }

bool Source_Open(const std::string& name, const std::atomic<bool>* stop, Source* source, std::string* error) {
  *source = {};
  source->kind = Kind_Of(name);
  source->stop = stop;
  switch (source->kind) {
    case SourceKind::Pipe:
      return Pipe_Open(name, source, error);
    case SourceKind::Tcp:
      return Tcp_Open(name, source, error);
    case SourceKind::Http:
      return Http_Open(name, source, error);
    default:
      return File_Open(name, source, error);
  }
}

int64_t Source_Read(Source* source, std::span<uint8_t> buffer, std::string* error) {
  if (source->stop->load()) return 0;
  switch (source->kind) {
    case SourceKind::Pipe:
      return Pipe_Read(source, buffer, error);
    case SourceKind::Tcp:
      return Tcp_Read(source, buffer, error);
    case SourceKind::Http:
      return Http_Read(source, buffer, error);
    default:
      return File_Read(source, buffer, error);
  }
}

bool Source_Resumable(const Source& source) {
  return source.kind == SourceKind::Tcp || (source.kind == SourceKind::Http && !Http_Whole(source));
}

void Source_Close(Source* source) {
  switch (source->kind) {
    case SourceKind::Pipe:
      Pipe_Close(source);
      break;
    case SourceKind::Tcp:
      Tcp_Close(source);
      break;
    case SourceKind::Http:
      Http_Close(source);
      break;
    default:
      File_Close(source);
  }
}
