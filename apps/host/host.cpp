#include "apps/host/host.h"

#include "apps/velarto/desktop.h"
#include "apps/velarto/output.h"
#include "apps/velarto/sources/source.h"
#include "apps/velarto/stop_flag.h"

#include <span>
#include <utility>

/** Writes for one message: as many as a piece may take, so that pieces don't pile up. */
static constexpr int32_t MostWrites = 8;
/** The longest wait for messages, in milliseconds: to check the stop flag, and while the plug-in takes no bytes. */
static constexpr DWORD IdleWait = 100, HeldWait = 10;

int Host_Report(const std::string& message) {
  std::fprintf(stderr, "velarto-host: %s\n", message.c_str());
  return ExitFailed;
}

/* ---- Streams -------------------------------------------------------------------------------------------------------------- */

static std::string Url_Of(const HostOptions& options) { return options.url.empty() ? options.source : options.url; }

static void Drop_Bytes(Host* host) {
  if (host->bytes) Bytes_Stop(host->bytes.get());
  host->bytes = nullptr;
  host->piece.clear();
  host->at = 0;
}

static void Close(const Host& host) { DestroyWindow(host.top); }

static void Start_Stream(Host* host) {
  const HostOptions& options = host->options;
  Drop_Bytes(host);
  const NPError result = Page_New_Stream(&host->page, options.type.c_str(), Url_Of(options).c_str());
  if (result != NPERR_NO_ERROR) {
    host->code = Host_Report("the plug-in takes no stream: NPP_NewStream gives " + std::to_string(result));
    Close(*host);
    return;
  }
  ++host->streams;
  host->bytes = Bytes_Start(options.source, options.loop, host->inbox, BytesMessage);
}

/** Delivers as much as the plug-in takes at once. True if it has taken something. */
static bool Deliver_Once(Host* host) {
  if (!host->page.streaming || !host->bytes) return false;
  if (host->at == host->piece.size()) {
    host->at = 0;
    host->piece.clear();
    if (!Bytes_Take(host->bytes.get(), &host->piece)) return false;
  }
  const int32_t taken = Page_Deliver(&host->page, std::span(host->piece).subspan(host->at));
  host->at += static_cast<size_t>(taken);
  return taken > 0;
}

void Host_Deliver(Host* host) {
  const std::shared_ptr<ByteQueue> bytes = host->bytes;
  if (!bytes) return;
  MSG message;
  // User input goes first; the reader posts the message again.
  const bool input = PeekMessageA(&message, nullptr, 0, WM_APP - 1, PM_NOREMOVE);
  for (int32_t i = 0; !input && i < MostWrites && Deliver_Once(host);) ++i;
  const bool held = host->at < host->piece.size() && host->page.streaming;
  // If the plug-in is full, this is tried again after the message by which it makes room.
  Bytes_Seen(bytes.get(), held && !input);
}

/** Ends the stream when all bytes of the source have been delivered; closes the window if the source could not be opened. */
static void Check_End(Host* host) {
  std::string error;
  if (!host->bytes || host->at < host->piece.size()) return;
  const BytesState state = Bytes_State(host->bytes.get(), &error);
  if (state == BytesState::Running) return;
  const bool good = state == BytesState::Ended;
  if (!good) host->code = Host_Report(error);
  Page_End_Stream(&host->page, good ? NPRES_DONE : NPRES_NETWORK_ERR);
  Drop_Bytes(host);
  if (state == BytesState::Unopened) Close(*host);
}

/** The plug-in may have asked for its stream again; other URLs are not supported. */
static void Check_Requests(Host* host) {
  bool again = false;
  for (const std::string& url : std::exchange(host->page.wanted, {})) {
    again |= url == Url_Of(host->options);
    if (url != Url_Of(host->options)) Host_Report("the plug-in asks for " + url + ", which is not the source");
  }
  if (again) Start_Stream(host);
}

/* ---- The program ---------------------------------------------------------------------------------------------------------- */

void Host_Leave(Host* host) {
  Drop_Bytes(host);
  Page_Close(&host->page);
}

/** Takes the next message, those for bytes and the plug-in's own last: a source faster than the screen must not delay the user's
 * input. */
static bool Take_Message(MSG* message) {
  return PeekMessageA(message, nullptr, 0, WM_APP - 1, PM_REMOVE) || PeekMessageA(message, nullptr, 0, 0, PM_REMOVE);
}

/** Called when no message waits. */
static void Idle(Host* host, const std::atomic<bool>& stop) {
  if (stop) return Close(*host);
  if (Deliver_Once(host)) return;
  if (!host->page.streaming) Drop_Bytes(host);  // The plug-in has ended it.
  Check_End(host);
  Check_Requests(host);
  // No message of the plug-in is left: everything has been shown.
  if (host->options.quit && !host->page.streaming) Close(*host);
  if (IsWindow(host->top)) {
    const bool held = host->at < host->piece.size();
    MsgWaitForMultipleObjects(0, nullptr, FALSE, held ? HeldWait : IdleWait, QS_ALLINPUT);
  }
}

static void Run_Messages(Host* host) {
  const std::atomic<bool>* const stop = Stop_On_Signals();
  while (IsWindow(host->top)) {
    MSG message = {};
    if (!Take_Message(&message)) {
      Idle(host, *stop);
      continue;
    }
    // In this loop they only end the wait.
    if (message.hwnd == host->inbox && message.message == BytesMessage) {
      if (host->bytes) Bytes_Seen(host->bytes.get(), false);
      continue;
    }
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
}

/** Makes the instance and gives it its window. */
static bool Open_Page(Host* host, std::string* error) {
  NPError result = Page_Open(&host->page, &host->plugin);
  if (result != NPERR_NO_ERROR) {
    *error = "the plug-in makes no instance: NPP_New gives " + std::to_string(result);
    return false;
  }
  const LONG_PTR before = GetWindowLongPtrA(host->shown, GWLP_WNDPROC);
  result = Page_Set_Window(&host->page, host->shown);
  if (result != NPERR_NO_ERROR) {
    *error = "the plug-in can't show in the window: NPP_SetWindow gives " + std::to_string(result) + StrangeWindowHint;
    return false;
  }
  if (GetWindowLongPtrA(host->shown, GWLP_WNDPROC) != before) return true;
  // It would wait for messages that never reach it.
  *error = "the plug-in does not take the window over";
  return false;
}

static int Run_Plugin(Host* host) {
  std::string error;
  if (!Host_Open_Windows(host, &error)) return Host_Report(error);
  if (!Open_Page(host, &error)) {
    Close(*host);
    return Host_Report(error);
  }
  Start_Stream(host);
  Run_Messages(host);
  const Page& page = host->page;
  if (host->code != ExitDone && page.delivered == 0) return host->code;
  std::fprintf(Output(), "%s bytes delivered, held back %s times, %s stream%s\n", std::to_string(page.delivered).c_str(),
               std::to_string(page.heldBack).c_str(), std::to_string(host->streams).c_str(), host->streams == 1 ? "" : "s");
  return host->code;
}

/** Sets the administrator's registry value for the record menu, which is read when the library is loaded. */
static void Turn_Menu_On() {
  HKEY key = nullptr;
  const DWORD on = 1;
  if (RegCreateKeyExA(HKEY_LOCAL_MACHINE, MakerKey, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr) != ERROR_SUCCESS)
    return;
  RegSetValueExA(key, "Mouse_RButton", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&on), sizeof on);
  RegCloseKey(key);
}

int Host_Run(const HostOptions& options) {
  std::string error;
  if (!Desktop_Start(options.screenBits, &error)) return Host_Report(error);
  if (options.menu) Turn_Menu_On();
  Host host{options};
  int code = ExitFailed;
  if (Plugin_Load(options.pluginName.c_str(), options.versionWord, &host.plugin, &error)) {
    code = Run_Plugin(&host);
    Plugin_Unload(&host.plugin);
  } else {
    Host_Report(error);
  }
  Desktop_Stop();
  return code;
}
