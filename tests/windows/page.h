// The plug-in in a page, as a browser loads it.
#pragma once

#include "apps/host/browser.h"
#include "windows/library.h"

struct PluginPage {
  Plugin plugin = {};
  Page page = {};

  /** Loads the plug-in, and shows an instance with an open stream in the window. */
  void Show(HWND window) {
    std::string error;
    ASSERT_TRUE(Plugin_Load(Library_Name(), 11, &plugin, &error)) << error;
    ASSERT_EQ(Page_Open(&page, &plugin), NPERR_NO_ERROR);
    ASSERT_EQ(Page_Set_Window(&page, window), NPERR_NO_ERROR);
    ASSERT_EQ(Page_New_Stream(&page, "video/x-orvistream", "http://camera/live"), NPERR_NO_ERROR);
  }
  /** May be called twice. */
  void Close() {
    Page_Close(&page);
    Plugin_Unload(&plugin);
  }
  /** Delivers bytes in the sizes that the plug-in asks for, and dispatches messages between the pieces. */
  void Feed(const Bytes& bytes) {
    for (size_t at = 0; at < bytes.size();) {
      const int32_t taken = Page_Deliver(&page, std::span(bytes).subspan(at));
      at += static_cast<size_t>(taken);
      ASSERT_TRUE(taken > 0 && taken <= 8192) << taken << " at " << at << ", though messages were dispatched";
      for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageA(&message);
    }
  }
};
