// The real DLL in a real window: real frames in, pixels read back from the screen. VELARTO_FORM (ddraw or gdi) names the
// form that this screen must lead to. The frames are files in the program's folder.
#include "windows/dll.h"

#include "windows/page.h"

namespace {

TEST_F(DllTest, ShowsFramesPixelForPixelOverASizeChange) {
  Window window(96, 64);
  Open(320, 240, window.handle);
  Push(Read_File("tile-96x64-q40.jpg"));
  EXPECT_EQ(Differing_Pixels(window.handle), 0);
  SetWindowPos(window.handle, HWND_TOPMOST, 40, 40, 64, 48, SWP_SHOWWINDOW);
  Push(Read_File("tile-64x48-q75.jpg"));
  EXPECT_EQ(Differing_Pixels(window.handle), 0);
}

TEST_F(DllTest, ShowsRowsThatAreNotAligned) {
  // The frame's header gives a size that is not a multiple of the macroblock's: rows of 39 pixels.
  Bytes frame = Read_File("tile-48x48-q50.jpg");
  frame[163 + 1] = 36, frame[165 + 1] = 39;
  Window window(39, 36);
  Open(39, 36, window.handle);
  Push(frame);
  EXPECT_EQ(Differing_Pixels(window.handle), 0);
}

TEST_F(DllTest, ComesBackAfterBeingMinimisedAndCovered) {
  Window window(96, 64);
  Open(96, 64, window.handle);
  ShowWindow(window.handle, SW_MINIMIZE);
  Push(Read_File("tile-96x64-q40.jpg"));
  ShowWindow(window.handle, SW_RESTORE);
  ASSERT_EQ(Differing_Pixels(window.handle), 0);
  {
    Window cover(60, 60);
    EXPECT_EQ(Read_Screen(cover.handle)[0], 255);
  }
  EXPECT_EQ(Differing_Pixels(window.handle), 0);
}

TEST_F(DllTest, TheScreenLeadsToTheFormExpected) {
  // DirectDraw fills a client area that is taller than 4:3; the GDI form leaves its lower part white.
  Window window(96, 128);
  Open(96, 64, window.handle);
  Push(Read_File("tile-96x64-q40.jpg"));
  bool white = true;
  for (int attempt = 0; attempt < 20; ++attempt) {
    Pump_Messages(100);
    const Bytes shown = Read_Screen(window.handle);
    white = std::all_of(shown.end() - 96 * 40 * 4, shown.end(),
                        [i = 0](uint8_t value) mutable { return i++ % 4 == 3 || value == 255; });
    if (white != directDraw) break;
    Repaint(window.handle);
  }
  EXPECT_EQ(white, !directDraw);
}

TEST_F(DllTest, ThePluginShowsItsStreamPixelForPixel) {
  const Window window(96, 64);
  Bytes stream;  // Short: a picture by DirectDraw takes the emulated PC seconds.
  for (int i = 0; i < 8; ++i) Append(&stream, Read_File(i == 4 ? "tile-64x48-q75.jpg" : "tile-96x64-q40.jpg"));
  PluginPage shown;
  shown.Show(window.handle);
  shown.Feed(stream);
  decoder = static_cast<JdecDecoder*>(shown.page.instance.pdata);
  EXPECT_EQ(Differing_Pixels(window.handle), 0);
  decoder = nullptr;  // The page frees it.
  shown.Close();
}

TEST(Dll, ComesAndGoesWithoutLeavingObjects) {
  HandleCounts early = {};
  Window window(96, 64);
  for (int round = 0; round < 6; ++round) {
    {
      Library dll;
      JdecDecoder* const decoder = dll.JDEC_New(96, 64);
      ASSERT_EQ(dll.JDEC_Draw_Init(decoder, window.handle), 1);
      dll.JDEC_Free(decoder);
    }
    if (round == 1) early = Count_Handles();
  }
  Expect_None_Left(early, 4);
}

#ifdef __i386__
/** Calls an operation with the stack 4 bytes past a multiple of 16, as code of old compilers does. */
__attribute__((noinline)) int32_t Call_Misaligned(int32_t(__cdecl* operation)(JdecDecoder*), JdecDecoder* decoder) {
  int32_t result;
  asm volatile("movl %%esp, %%ebx\n andl $-16, %%esp\n subl $8, %%esp\n pushl %2\n call *%1\n movl %%ebx, %%esp"
               : "=a"(result)
               : "r"(operation), "r"(decoder)
               : "ebx", "ecx", "edx", "memory", "cc");
  return result;
}

TEST_F(DllTest, CallersMayMisalignTheirStack) {
  decoder = dll.JDEC_New(96, 64);
  ASSERT_EQ(dll.JDEC_Draw_Init(decoder, nullptr), 1);
  Push(Read_File("tile-96x64-q40.jpg"));
  EXPECT_EQ(Call_Misaligned(Find_Export<int32_t(__cdecl*)(JdecDecoder*)>(dll.module, "JDEC_Get_Quality"), decoder), 40);
}
#endif

}  // namespace
