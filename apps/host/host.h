/* velarto-host: a browser of one page. Its window's thread hands the stream to the plug-in as offered, between the messages of
 * the windows; the source is read on another one. */
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
  std::string url;  ///< What the plug-in is told; empty: the source.
  uint16_t versionWord = 0x000B;
  int32_t width = 640, height = 480;  ///< Of the window's client area.
  int screenBits = 0;                 ///< 0: as the desktop is.
  bool menu = false;                  ///< Set the plug-in's registry value of the right button.
  bool child = false;                 ///< The plug-in's window is a part of the page's, not the whole.
  bool loop = false;                  ///< A file again and again.
  bool quit = false;                  ///< At the end of the stream.
};

/** The program at work. */
struct Host {
  const HostOptions& options;
  Plugin plugin = {};
  Page page = {};
  HWND top = nullptr, shown = nullptr;    ///< The page's window, and the plug-in's, which may be the same.
  HWND inbox = nullptr;                   ///< A child of the page's that is never seen; gets BytesMessage.
  std::shared_ptr<ByteQueue> bytes = {};  ///< Of the stream; null without one.
  std::vector<uint8_t> piece = {};        ///< Under way to the plug-in,
  size_t at = 0;                          ///< which has taken that much of it.
  int64_t streams = 0;
  int code = 0;
};

constexpr UINT BytesMessage = WM_APP;

/** Writes "velarto-host: MESSAGE" as a line to standard error. Gives ExitFailed. */
int Host_Report(const std::string& message);

/** Runs until the window is closed, or as told by the options. Gives the exit code, all failures told. */
int Host_Run(const HostOptions& options);

/** Hands on some of what has come, unless the user's input waits. */
void Host_Deliver(Host* host);
/** The windows are about to end: ends stream and instance. Any number of times. */
void Host_Leave(Host* host);

/** Makes the windows, and shows them. False, with *error, when they can't be had. */
bool Host_Open_Windows(Host* host, std::string* error);
