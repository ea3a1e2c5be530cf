#include "overlay/motion_search.h"

#include "decode/decoder.h"

#include "platform/win32.h"

#include <cstring>

namespace {

constexpr int32_t CaptionHeight = 40, CaptionWidth = 20, CaptionTop = 5;
constexpr COLORREF Red = RGB(255, 0, 0);

/** Draws the caption centred. If it is wider than the picture, its left edge wraps around and it lands far outside. */
void Draw_Caption(HDC dc, HFONT font, const char* text, int32_t width) {
  const auto length = static_cast<uint32_t>(std::strlen(text));
  const uint32_t left = (static_cast<uint32_t>(width) - CaptionWidth * length) / 2;
  const HGDIOBJ before = SelectObject(dc, font);
  SetTextColor(dc, Red);
  SetBkMode(dc, TRANSPARENT);
  TextOutA(dc, static_cast<int32_t>(left), CaptionTop, text, static_cast<int32_t>(length));
  SelectObject(dc, before);
}

void Draw_Outline(HDC dc, const RECT& rect) {
  const HPEN pen = CreatePen(PS_SOLID, 1, Red);
  const HGDIOBJ penBefore = SelectObject(dc, pen);
  const HGDIOBJ brushBefore = SelectObject(dc, GetStockObject(NULL_BRUSH));
  Rectangle(dc, rect.left, rect.top, rect.right, rect.bottom);
  SelectObject(dc, brushBefore);
  SelectObject(dc, penBefore);
  DeleteObject(pen);
}

}  // namespace

int32_t VELARTO_CDECL JDEC_SetMotionSeachEnable(JdecDecoder* decoder, int32_t enable) {
  if (!decoder || !decoder->display) return 0;
  decoder->display->motionSearchEnabled = enable;
  return 1;
}

int32_t VELARTO_CDECL JDEC_SetMotionSeachArea(JdecDecoder* decoder, int32_t left, int32_t top, int32_t right, int32_t bottom) {
  if (!decoder || !decoder->display) return 0;
  SetRect(&decoder->display->motionRect, left, top, right, bottom);
  return 1;
}

int32_t VELARTO_CDECL JDEC_SetMotionSeachString(JdecDecoder* decoder, const char* text) {
  if (!decoder || !decoder->display || !text) return 0;
  auto& caption = decoder->display->motionString;
  std::memset(caption, 0, sizeof caption);
  for (size_t i = 0; i + 1 < sizeof caption && text[i] != 0; ++i) caption[i] = text[i];
  return 1;
}

void Motion_Search_Draw(JdecDisplay* display, int32_t width, int32_t height) {
  const HFONT font = CreateFontA(CaptionHeight, CaptionWidth, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                                 OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, PROOF_QUALITY, FIXED_PITCH | FF_MODERN, "Courier New");
  IDirectDrawSurface* surface = display->offscreenSurface;
  IDirectDrawSurface_Restore(surface);
  HDC dc = nullptr;
  if (SUCCEEDED(IDirectDrawSurface_GetDC(surface, &dc))) {
    // The layer and the strips below the picture are not drawn again with the next frame.
    IntersectClipRect(dc, 0, 0, width, height);
    Draw_Caption(dc, font, display->motionString, width);
    Draw_Outline(dc, display->motionRect);
    SelectClipRgn(dc, nullptr);
    IDirectDrawSurface_ReleaseDC(surface, dc);
  }
  DeleteObject(font);
}
