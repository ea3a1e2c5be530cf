// A browser that calls the plug-in in any order, with any registry settings, messages to its window, and steps that fail.
#include "fuzz/run.h"
#include "platform/module.h"
#include "plugin/attach.h"
#include "plugin/entry.h"
#include "plugin/window_proc.h"
#include "resources/resources.h"

#include <cstring>

namespace {

constexpr char MakerKeyPath[] = "HKEY_LOCAL_MACHINE\\" MAKER_KEY_TEXT;
constexpr char InternetKey[] = "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";

struct Browser {
  Input input;
  HWND windows[2];  ///< One for each instance, as in a page.
  NPPluginFuncs plugin = {};
  NPNetscapeFuncs netscape = {};
  NPInstance instances[2] = {};
  NPStream stream = {};
  std::string url = {};
};

void Pump() {
  MSG message;
  for (int i = 0; i < 50 && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE); ++i) DispatchMessageA(&message);
}

/** Sets values of some type and length under the names that the plug-in reads. */
void Draw_Registry(Input* input) {
  constexpr const char* names[] = {"Decoder_Speed",           "Mouse_LButton",
                                   "Mouse_RButton",           "MaxConnectionsPer1_0Server",
                                   "MaxConnectionsPerServer", "MimeExclusionListForCache"};
  Rig_Forget_Registry();
  for (int count = input->Byte() % 8; count > 0; --count) {
    const uint8_t which = input->Byte(), length = input->Byte();
    const Bytes data = length < 200 ? input->Some(length % 40) : Bytes(1900 + (size_t)length, 'x');
    Rig_Set_Registry(which % 6 < 3 ? MakerKeyPath : InternetKey, names[which % 6], which & 8 ? REG_SZ : REG_DWORD, data);
  }
}

void Start(Browser* browser) {
  Library_Attach(Module_Handle());
  NP_GetEntryPoints(&browser->plugin);
  browser->netscape.version = (uint16_t)(browser->input.Byte() % 16);
  static Browser* asked;
  asked = browser;
  browser->netscape.geturl = [](NPP instance, const char* url, const char*) -> NPError {
    const uint8_t answer = asked->input.Byte() % 4;
    if (answer & 1) asked->plugin.newstream(instance, const_cast<char*>("video/x"), &asked->stream, 0, nullptr);
    if (answer & 2) asked->plugin.destroy(instance, nullptr);
    REQUIRE(url[strnlen(url, 2000)] == 0);
    return NPERR_NO_ERROR;
  };
  browser->netscape.destroystream = [](NPP, NPStream*, NPReason) -> NPError { return NPERR_NO_ERROR; };
  REQUIRE(NP_Initialize(&browser->netscape) == NPERR_NO_ERROR);
}

void Write(Browser* browser, NPP instance) {
  Bytes bytes = browser->input.Byte() & 1 ? Next_Frame(&browser->input) : browser->input.Some(browser->input.Byte());
  const int32_t ready = browser->plugin.writeready(instance, &browser->stream);
  REQUIRE(ready >= 0 && ready <= 8192);
  const auto length = std::min((int32_t)bytes.size(), ready);
  REQUIRE(browser->plugin.write(instance, &browser->stream, 0, length, bytes.data()) <= length);
}

void Message(Browser* browser, uint8_t detail) {
  // Without those that open the menu, which would wait for a user.
  constexpr UINT messages[] = {WM_PAINT,      WM_COMMAND, WM_SETCURSOR, EndStreamMessage,
                               GetUrlMessage, WM_APP,     WM_MOUSEMOVE, WM_COMMAND};
  const auto word = (WPARAM)(detail & 8 ? StartRecordingCommand : StopRecordingCommand);
  SendMessageA(browser->windows[detail >> 7], messages[detail % 8], detail & 16 ? word : (WPARAM)browser->input.Number(),
               browser->input.Word());
}

void Call(Browser* browser) {
  Input& input = browser->input;
  const NPPluginFuncs& plugin = browser->plugin;
  const uint8_t which = input.Byte(), detail = input.Byte();
  const NPP instance = detail == 255 ? nullptr : &browser->instances[detail >> 7];
  NPWindow place = {detail & 1 ? browser->windows[detail >> 6 & 1] : nullptr, 0, 0, 101, 64, {}, 1};
  switch (which % 12) {
    case 0:
      return (void)plugin.newp(nullptr, instance, 0, 0, nullptr, nullptr, nullptr);
    case 1:
      return (void)plugin.destroy(instance, nullptr);  // Its pdata stays, and calls for it may follow.
    case 2:
      return (void)plugin.setwindow(instance, detail & 2 ? &place : nullptr);
    case 3:
      browser->url.assign(input.Word() % 1100u, 'u');
      browser->stream.url = browser->url.c_str();
      return (void)plugin.newstream(instance, const_cast<char*>(detail & 1 ? "video/x" : "text"),
                                    detail & 2 ? &browser->stream : nullptr, 0, nullptr);
    case 4:
      return (void)plugin.destroystream(instance, detail & 2 ? &browser->stream : nullptr, (NPReason)(detail % 3));
    case 5:
    case 6:
    case 7:
      return Write(browser, instance);
    case 8:
      return Pump();
    case 9:
      return Message(browser, detail);
    case 10:
      return Let_Memory_Fail(input.Byte());
    default:
      return Rig_Fail((RigStep)(detail % ((int)RigStep::PostMessage + 1)), which / 12, 2);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input = {data, size};
  const uint32_t mask = Draw_Level(&input);
  const Run run(mask);
  const FuzzWindow window(&input);
  Screen_Set_File_Chooser([](const OPENFILENAMEA&) { return std::optional<std::string>("/dev/null"); });
  Draw_Registry(&input);
  if (input.Byte() & 1) Let_Memory_Fail(input.Byte());
  Browser browser = {.input = input, .windows = {window.handle, window.Another()}};
  Start(&browser);
  for (int calls = 0; browser.input.left && calls < 60; ++calls) Call(&browser);
  Rig_Fail_Nothing();
  for (NPInstance& instance : browser.instances) browser.plugin.destroy(&instance, nullptr);
  NP_Shutdown();
  Library_Detach();
  DestroyWindow(browser.windows[1]);
  return 0;
}
