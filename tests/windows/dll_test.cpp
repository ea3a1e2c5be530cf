// The real DLL in a real window: real frames in, pixels read back from the screen. VELARTO_FORM (ddraw or gdi) tells which form
// the screen at hand must lead to; the files lie beside the program.
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
  // A size that the frame announces, and that leaves a remainder beside the whole macroblocks: rows of 39 pixels.
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
  // A client taller than 4:3 is filled by DirectDraw, and keeps its white foot in the GDI form.
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
  Bytes stream;  // Short, for the emulated PC takes seconds for a picture by DirectDraw.
  for (int i = 0; i < 8; ++i) Append(&stream, Read_File(i == 4 ? "tile-64x48-q75.jpg" : "tile-96x64-q40.jpg"));
  PluginPage shown;
  shown.Show(window.handle);
  shown.Feed(stream);
  decoder = static_cast<JdecDecoder*>(shown.page.instance.pdata);
  EXPECT_EQ(Differing_Pixels(window.handle), 0);
  decoder = nullptr;  // The page's.
  shown.Close();
}

TEST(Dll, ComesAndGoesWithoutLeavingObjects) {
  std::array<DWORD, 3> early = {};
  Window window(96, 64);
  for (int round = 0; round < 16; ++round) {
    Library dll;
    JdecDecoder* const decoder = dll.JDEC_New(96, 64);
    ASSERT_EQ(dll.JDEC_Draw_Init(decoder, window.handle), 1);
    dll.JDEC_Free(decoder);
    if (round == 3) early = Handle_Counts();
  }
  for (size_t kind : {0, 1}) EXPECT_LE(Handle_Counts()[kind], early[kind] + 4);
}

#ifdef __i386__
/** Calls an operation with the stack at 4 bytes past a multiple of 16, as callers of old compilers do. */
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
