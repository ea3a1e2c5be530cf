/* A browser for tests of the plug-in: its tables, a page with the plug-in's window, streams that are fed in chunks. */
#pragma once

#include "platform/module.h"
#include "platform/portable/rig.h"
#include "plugin/attach.h"
#include "plugin/entry.h"
#include "plugin/window_proc.h"
#include "resources/resources.h"
#include "support/streams.h"

constexpr char MakerKeyPath[] = "HKEY_LOCAL_MACHINE\\" MAKER_KEY_TEXT;
constexpr LRESULT OwnResult = 42;

inline std::vector<std::string> asked;  // URLs that the browser was asked for; "end" for the end of a stream.
inline MSG seen;                        // The message that a window's own procedure got last.
inline std::function<void()> poked;     // Called at the next WM_APP.

inline LRESULT Page_Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_PAINT || message == WM_ERASEBKGND) return DefWindowProcA(window, message, wParam, lParam);
  if (message == WM_APP && poked) std::exchange(poked, nullptr)();
  seen = {window, message, wParam, lParam, 0, {}};
  return OwnResult;
}

inline HWND Page_Window(HWND parent, int x, int y, int width, int height) {
  const WNDCLASSA type = {0, Page_Proc, 0, 0, nullptr, nullptr, nullptr, nullptr, nullptr, "page"};
  RegisterClassA(&type);
  const DWORD style = (parent ? WS_CHILD : WS_POPUP) | WS_VISIBLE;
  return CreateWindowExA(0, "page", "", style, x, y, width, height, parent, nullptr, nullptr, nullptr);
}

inline void Pump() {
  for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageA(&message);
}

struct PluginTest : testing::Test {
  const TestFrame small = Load_Frame("tile-48x48-q50.jpg", 50), large = Load_Frame("tile-96x64-q40.jpg", 40);
  const std::string path = Scratch_Path("plugin.vlr");
  const int32_t alive = (Rig_Forget_Registry(), Screen_Set_Up(Screen_Of_Depth(32)), Rig_Objects_Alive());
  const HWND page = Page_Window(nullptr, 50, 40, 400, 300), window = Page_Window(page, 10, 20, 101, 64);
  NPPluginFuncs plugin = {};
  NPNetscapeFuncs netscape = {};
  NPInstance instance = {};
  NPStream stream = {nullptr, nullptr, "http://camera/live", 0, 0, nullptr};
  std::string proposed;  ///< The default name in the file dialog. The user chooses `path`.

  PluginTest() {
    Screen_Set_File_Chooser([&](const OPENFILENAMEA& dialog) {
      proposed = dialog.lpstrFile;
      EXPECT_STREQ(dialog.lpstrTitle, "Save Video Stream...");
      EXPECT_TRUE(dialog.Flags == 2050 && dialog.hwndOwner == window && dialog.nMaxFile == 260 && dialog.nFilterIndex == 0);
      return std::optional(path);
    });
  }
  ~PluginTest() override {
    Stop();
    DestroyWindow(page);
    EXPECT_EQ(Rig_Objects_Alive(), alive);
    Screen_Remove();
    std::remove(path.c_str());
  }
  NPError Start(uint8_t left, uint8_t right, uint16_t version = 11) {
    Rig_Set_Registry(MakerKeyPath, "Mouse_LButton", REG_DWORD, {left, 0, 0, 0});
    Rig_Set_Registry(MakerKeyPath, "Mouse_RButton", REG_DWORD, {right, 0, 0, 0});
    asked.clear();
    Library_Attach(Module_Handle());
    NP_GetEntryPoints(&plugin);
    netscape.version = version;
    netscape.geturl = [](NPP, const char* url, const char*) { return asked.push_back(url), NPERR_NO_ERROR; };
    netscape.destroystream = [](NPP, NPStream*, NPReason) { return asked.push_back("end"), NPERR_NO_ERROR; };
    return NP_Initialize(&netscape);
  }
  NPError Add(NPP added) { return plugin.newp(nullptr, added, 0, 0, nullptr, nullptr, nullptr); }
  NPError Adopt(NPP adopter, HWND handle) {
    NPWindow place = {handle, 0, 0, 101, 64, {}, 1};
    return plugin.setwindow(adopter, &place);
  }
  NPError New_Stream(const char* type) { return plugin.newstream(&instance, const_cast<char*>(type), &stream, 0, nullptr); }
  /** Starts the plug-in with an instance; with `adopted`, also with that window and an open stream. */
  JdecDecoder* Open(uint8_t left, uint8_t right, HWND adopted) {
    const int results[] = {Start(left, right), Add(&instance), Adopt(&instance, adopted), adopted ? New_Stream("video") : 0};
    for (const int result : results) EXPECT_EQ(result, NPERR_NO_ERROR);
    return static_cast<JdecDecoder*>(instance.pdata);
  }
  /** The tooltip's text and the cursor's number. */
  std::string Signs() {
    SendMessageA(window, WM_SETCURSOR, 0, 0);
    return Rig_Tooltip_Text(window) + std::to_string(Screen_Cursor());
  }
  void End_Instance() {
    if (instance.pdata) plugin.destroy(&instance, nullptr);
    instance = {};
  }
  void Stop() {
    End_Instance();
    if (moduleHandle) NP_Shutdown(), Library_Detach();
  }
  void Feed(const Bytes& bytes) {
    Pump();
    for (size_t at = 0; at < bytes.size() && instance.pdata; Pump()) {
      const auto length = std::min((int32_t)(bytes.size() - at), plugin.writeready(&instance, &stream));
      ASSERT_GT(length, 0) << "stuck at " << at;
      at += (size_t)plugin.write(&instance, &stream, 0, length, const_cast<uint8_t*>(&bytes[at]));
    }
  }
};
