// A stream through the plug-in, in both forms of the display.
#include "apps/host/browser.h"
#include "windows/dll.h"

namespace {

TEST_F(DllTest, ThePluginShowsItsStreamPixelForPixel) {
  const Window window(96, 64);
  Plugin plugin = {};
  Page page = {};
  std::string error;
  ASSERT_TRUE(Plugin_Load("velarto.dll", 11, &plugin, &error)) << error;
  ASSERT_EQ(Page_Open(&page, &plugin), NPERR_NO_ERROR);
  ASSERT_EQ(Page_Set_Window(&page, window.handle), NPERR_NO_ERROR);
  ASSERT_EQ(Page_New_Stream(&page, "video/x-orvistream", "http://camera/live"), NPERR_NO_ERROR);
  Bytes stream;  // Short, for the emulated PC takes seconds for a picture by DirectDraw.
  for (int i = 0; i < 8; ++i) {
    const Bytes frame = Read_File(i == 4 ? "tile-64x48-q75.jpg" : "tile-96x64-q40.jpg");
    stream.insert(stream.end(), frame.begin(), frame.end());
  }
  for (size_t at = 0; at < stream.size();) {
    const int32_t taken = Page_Deliver(&page, std::span(stream).subspan(at));
    ASSERT_TRUE(taken > 0 && taken <= 8192) << taken << " at " << at;
    at += static_cast<size_t>(taken);
    for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageA(&message);
  }
  decoder = static_cast<JdecDecoder*>(page.instance.pdata);
  EXPECT_EQ(Differing_Pixels(window.handle), 0);
  decoder = nullptr;  // The page's.
  Page_Close(&page);
  Plugin_Unload(&plugin);
}

}  // namespace
