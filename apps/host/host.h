/* velarto-host: a browser of one page. The window's thread gives the plug-in as much of the stream as it takes, between the
 * windows' messages; another thread reads the source. */
#pragma once

#include "apps/host/browser.h"
#include "apps/host/byte_queue.h"

#include "platform/win32.h"

#include <memory>
#include <string>
#include <vector>

struct HostOptions {
  std::string source;
  std::string pluginName = DefaultLibrary;
  std::string type = MimeType;
  std::string url;  ///< The plug-in gets this; empty: the source.
  uint16_t versionWord = 0x000B;
  int32_t width = 640, height = 480;  ///< Of the window's client area.
  int screenBits = 0;                 ///< 0: as the desktop is.
  bool menu = false;                  ///< Turn on the plug-in's record menu.
  bool child = false;                 ///< The plug-in gets a part of the page's window, not all of it.
  bool loop = false;                  ///< A file again and again.
  bool quit = false;                  ///< At the end of the stream.
};

/** The program at work. */
struct Host {
  const HostOptions& options;
  Plugin plugin = {};
  Page page = {};
  HWND top = nullptr, shown = nullptr;    ///< The page's window, and the plug-in's, which may be the same.
  HWND inbox = nullptr;                   ///< An invisible child of the page's; gets BytesMessage.
  std::shared_ptr<ByteQueue> bytes = {};  ///< Of the stream; null without one.
  std::vector<uint8_t> piece = {};        ///< For the plug-in,
  size_t at = 0;                          ///< which has taken so much of it.
  int64_t streams = 0;
  int code = 0;
};

constexpr UINT BytesMessage = WM_APP;

/** Writes "velarto-host: MESSAGE" as a line to standard error. Gives ExitFailed. */
int Host_Report(const std::string& message);

/** Runs until the window is closed, or until the options end it. Gives the exit code; failures have been reported. */
int Host_Run(const HostOptions& options);

/** Delivers some of the bytes that have come, unless user input waits. */
void Host_Deliver(Host* host);
/** Ends stream and instance, before the windows are destroyed. May be called more than once. */
void Host_Leave(Host* host);

/** Makes the windows, and shows them. False with *error. */
bool Host_Open_Windows(Host* host, std::string* error);
