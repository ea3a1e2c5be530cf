/* Where a stream comes from: a file, standard input, a TCP connection, or an HTTP server. */
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>

enum class SourceKind { File, Pipe, Tcp, Http };

/** Time for a connection to be made. */
inline constexpr std::chrono::seconds ConnectTimeOut{5};
/** A connection without data for so long is taken for broken. */
inline constexpr std::chrono::seconds StallTimeOut{10};

struct HttpStream;

/** An open source. Opened, read and closed by one thread; another may set the stop flag. */
struct Source {
  SourceKind kind = SourceKind::File;
  int64_t size = 0;            ///< Bytes of a file; 0 for the live sources.
  std::FILE* file = nullptr;   ///< File: owned.
  intptr_t handle = -1;        ///< Pipe, Tcp: the system's handle.
  HttpStream* http = nullptr;  ///< Http: owned.
  const std::atomic<bool>* stop = nullptr;
};

/** A source that can be read only once, at its own speed: anything but a file. */
bool Source_Live(const std::string& name);

/** The name for messages and titles: without the user and password of an address. */
std::string Source_Title(const std::string& name);

/** Opens the source of that name: "-", "tcp://HOST:PORT", "http://..." or "https://...", or a file. Waiting ends soon when *stop
 *  becomes true. False, with one line in *error, when it can't be opened. */
bool Source_Open(const std::string& name, const std::atomic<bool>* stop, Source* source, std::string* error);

/** Waits for bytes and stores some. Gives how many, 0 at the end or when stopped, and -1 with *error on a failure. */
int64_t Source_Read(Source* source, std::span<uint8_t> buffer, std::string* error);

/** At the end: is it worth connecting again? Not after a response of an announced length, all read: that is a recording. */
bool Source_Resumable(const Source& source);

void Source_Close(Source* source);

/* The kinds, each in its own file, with one file per platform where platforms differ. Contracts as above. */
bool File_Open(const std::string& path, Source* source, std::string* error);
int64_t File_Read(Source* source, std::span<uint8_t> buffer, std::string* error);
void File_Close(Source* source);

/** path "-": standard input, which is never closed. Otherwise a named pipe or device. */
bool Pipe_Open(const std::string& path, Source* source, std::string* error);
int64_t Pipe_Read(Source* source, std::span<uint8_t> buffer, std::string* error);
void Pipe_Close(Source* source);

bool Tcp_Open(const std::string& name, Source* source, std::string* error);
int64_t Tcp_Read(Source* source, std::span<uint8_t> buffer, std::string* error);
void Tcp_Close(Source* source);

/** A multipart response is split: reading gives the frames in it, and frames made from its other pictures. */
bool Http_Open(const std::string& name, Source* source, std::string* error);
int64_t Http_Read(Source* source, std::span<uint8_t> buffer, std::string* error);
/** All bytes of a response with an announced length have been read. */
bool Http_Whole(const Source& source);
void Http_Close(Source* source);
