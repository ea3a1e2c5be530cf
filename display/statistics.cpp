#include "display/statistics.h"

#include "platform/win32.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr double MostRate = 30.0;
/** Frames of one measuring period. */
constexpr int32_t MostFrames = 100;
constexpr int32_t TextHeight = 16, TextWidth = 8;
/** Distances of the texts' upper left corners from the right and the bottom edge of the client area. */
constexpr LONG FpsLeft = 50, BitrateLeft = 80, BitrateTop = 20;

void Draw_White(HDC dc, HFONT font, POINT at, const char* text) {
  const HGDIOBJ before = SelectObject(dc, font);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, RGB(255, 255, 255));
  TextOutA(dc, at.x, at.y, text, static_cast<int>(std::strlen(text)));
  SelectObject(dc, before);
}

/** Draws at a point of the client area: in the DirectDraw form on the primary surface, in the GDI form in the window. */
void Draw_Text(const JdecDisplay* display, POINT at, const char* text) {
  const HFONT font = CreateFontA(TextHeight, TextWidth, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                                 CLIP_DEFAULT_PRECIS, PROOF_QUALITY, FIXED_PITCH | FF_MODERN, "Courier New");
  HDC dc = nullptr;
  if (!display->useDirectDraw) {
    dc = GetDC(display->window);
    if (dc) Draw_White(dc, font, at, text);
    if (dc) ReleaseDC(display->window, dc);
  } else if (SUCCEEDED(IDirectDrawSurface_GetDC(display->primarySurface, &dc))) {
    ClientToScreen(display->window, &at);
    Draw_White(dc, font, at, text);
    IDirectDrawSurface_ReleaseDC(display->primarySurface, dc);
  }
  DeleteObject(font);
}

SIZE Client_Size(const JdecDisplay* display) {
  RECT client = {};
  GetClientRect(display->window, &client);
  return {client.right - client.left, client.bottom - client.top};
}

/** Counts a frame. Gives the frame rate to show, in frames per second. */
double Count_Frame(JdecDisplay* display) {
  ++display->fpsCount;
  const uint32_t tick = GetTickCount(), elapsed = tick - display->fpsTick;
  if (elapsed == 0 && display->fpsCount == 0) return 0;
  const double rate = display->fpsCount * 1000.0 / elapsed;
  const bool newPeriod = rate > MostRate || display->fpsCount > MostFrames;
  if (newPeriod) {
    display->fpsTick = tick;
    display->fpsCount = 0;
  }
  if (display->useDirectDraw) return rate > MostRate ? MostRate : rate;
  return newPeriod ? MostRate : rate;
}

}  // namespace

void Display_Show_Statistics(JdecDisplay* display, bool show) {
  if (display) display->showStatistics = show;
}

void Set_OSD_Text(JdecDisplay* display, const char* text) {
  constexpr size_t room = sizeof display->osdText - 1;
  std::memset(display->osdText, 0, sizeof display->osdText);
  for (size_t i = 0; i < room && text[i] != 0; ++i) display->osdText[i] = text[i];
}

void Display_Draw_Fps_Text(JdecDisplay* display) {
  if (!IsWindowEnabled(display->window)) return;
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", Count_Frame(display));
  Draw_Text(display, {Client_Size(display).cx - FpsLeft, 0}, text);
}

void Display_Draw_Bitrate_Text(const JdecDisplay* display) {
  if (!display->useDirectDraw || !IsWindowEnabled(display->window)) return;
  const SIZE client = Client_Size(display);
  Draw_Text(display, {client.cx - BitrateLeft, client.cy - BitrateTop}, display->osdText);
}
