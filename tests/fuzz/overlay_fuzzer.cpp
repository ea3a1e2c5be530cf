// Overlay calls with any argument, on pictures, windows and screens of any size and depth. All levels show the same in the
// window, and nothing is written outside a surface.
#include "decode/decoder.h"
#include "display/context.h"
#include "fuzz/run.h"

static HBITMAP Next_Bitmap(Input* input) {
  if (input->Byte() % 8 == 0) return nullptr;
  const BITMAPINFO info = {
      {sizeof(BITMAPINFOHEADER), input->Byte() % 200 + 1, input->Byte() % 200 + 1, 1, 32, BI_RGB, 0, 0, 0, 0, 0}, {}};
  const Bytes pixels((size_t)info.bmiHeader.biWidth * (size_t)info.bmiHeader.biHeight * 4, input->Byte());
  return CreateDIBitmap(nullptr, &info.bmiHeader, CBM_INIT, pixels.data(), &info, DIB_RGB_COLORS);
}

static void Set_Bitmap(JdecDecoder* decoder, HBITMAP bitmap, bool position) {
  const int32_t objects = Rig_Objects_Alive();
  position ? (void)JDEC_set_pos_bmp(decoder, bitmap) : JDEC_set_ptz_bmp(decoder, bitmap);
  if (bitmap && Rig_Objects_Alive() == objects) DeleteObject(bitmap);  // Not stored: still the caller's.
}

static void Call(JdecDecoder* decoder, Input* input, HWND window) {
  const uint8_t which = input->Byte();
  const int32_t a = input->Number(), b = input->Number();
  const auto n = [&] { return input->Number(); };
  const int32_t c = which % 16 < 6 ? n() : 0, d = which % 16 < 4 ? n() : 0;
  switch (which % 16) {
    case 0:
      return JDEC_set_MD_area_2(decoder, a, b, c, d, 0);
    case 1:
      return JDEC_show_rectangle(decoder, a, b, c, d, which & 16);
    case 2:
      return (void)JDEC_SetMotionSeachArea(decoder, a, b, c, d);
    case 3: {
      const int32_t rect[] = {a, b, c, d};
      return (void)JDEC_Access_SrcRect(decoder, rect);
    }
    case 4:
      return JDEC_set_MD_area(decoder, a, b, c);
    case 5:
      return (void)JDEC_SetMotionSeachEnable(decoder, c);
    case 6:
      return JDEC_enable_MD(decoder, a);
    case 7:
      return JDEC_set_MD_color(a);
    case 8:
      return Set_Bitmap(decoder, Next_Bitmap(input), false);
    case 9:
      return Set_Bitmap(decoder, Next_Bitmap(input), true);
    case 10:
      return (void)JDEC_SetMotionSeachString(decoder, std::string(input->Word() % 300u, (char)a).c_str());
    case 11:
      return Rig_Lose_Surfaces();
    case 12:
      return Rig_Fail((RigStep)((int)RigStep::CreateOffscreen + which / 16), a & 3, 1);
    case 13:
      return JDEC_reload_palette(decoder);
    case 14:
      return JDEC_Draw_Exit(decoder), (void)JDEC_Draw_Init(decoder, window);
    default:
      return Push(decoder, Next_Frame(input));
  }
}

static Bytes Show(uint32_t mask, Input input) {
  const Run run(mask);
  const FuzzWindow window(&input);
  const uint8_t size = input.Byte();
  const int32_t width = size & 1 ? 640 : input.Word() % 200 + 1, height = size & 2   ? 240
                                                                          : size & 4 ? 480
                                                                                     : input.Word() % 200 + 1;
  JdecDecoder* const decoder = JDEC_New(width, height);
  JDEC_Draw_Init(decoder, window.handle);
  Push(decoder, Make_Frame(FrameForm::Compact, width, height, 50, input.Some(40)));
  for (int calls = 0; input.left && calls < 40; ++calls) Call(decoder, &input, window.handle);
  Rig_Fail_Nothing();
  const int32_t rect[] = {0, 0, 320, 240};
  JDEC_Access_SrcRect(decoder, rect);
  const JdecDisplay* const display = decoder->display;
  if (display && display->offscreenSurface) REQUIRE(Rig_Guards_Whole(display->offscreenSurface));
  Bytes pixels = window.Pixels();
  JDEC_Free(decoder);
  return pixels;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Compare_With_Plain(data, size, 4, Show);
  return 0;
}
