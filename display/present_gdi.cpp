#include "display/present_gdi.h"

#include "display/palette.h"
#include "pixel/arena.h"
#include "pixel/convert.h"

#include "platform/win32.h"

#include <cstring>

namespace {

/** Copies the rows to multiples of 4 bytes, which GDI requires. The caller calls Arena_Free. Null without memory. */
uint8_t* Aligned_Copy(const JdecRaster* raster) {
  const auto pitch = static_cast<size_t>(raster->pitch);
  const size_t alignedPitch = (pitch + 3) & ~size_t{3};
  auto* copy = static_cast<uint8_t*>(Arena_Alloc(alignedPitch * static_cast<size_t>(raster->height), nullptr));
  if (!copy) return nullptr;
  uint8_t* row = copy;
  for (int32_t i = raster->height; i-- > 0; row += alignedPitch) std::memcpy(row, raster->rows[i], pitch);
  return copy;
}

/** A header, and after it three masks or the colours of the indices. */
struct FullHeader {
  BITMAPINFOHEADER header;
  union {
    DWORD masks[3];
    RGBQUAD colors[PaletteSlots];
  };
};

/** The header of bitmapInfo, and what GDI needs for 5-6-5 pixels and palette indices: without masks it reads 16 bits as 5-5-5,
 *  and the colour slots of bitmapInfo hold no colours. */
FullHeader Header_For(const JdecDisplay* display) {
  FullHeader full = {display->bitmapInfo->bmiHeader, {}};
  if (display->pixelFormat == PixelPalette8) {
    for (int32_t i = FirstColor; i <= LastColor; ++i) {
      const PALETTEENTRY color = Palette_Color(i);
      full.colors[i] = {color.peBlue, color.peGreen, color.peRed, 0};
    }
    return full;
  }
  full.header.biClrUsed = full.header.biClrImportant = 0;
  if (display->pixelFormat != PixelRgb565) return full;
  full.header.biCompression = BI_BITFIELDS;
  full.masks[0] = 0xF800;
  full.masks[1] = 0x07E0;
  full.masks[2] = 0x001F;
  return full;
}

void Stretch_To_Window(const JdecDisplay* display, const JdecRaster* raster, const uint8_t* bits, const PicturePart& part,
                       SIZE target) {
  const HDC dc = GetDC(display->window);
  if (!dc) return;
  // Without the palette the system would show the nearest of its own twenty colours.
  const HPALETTE before = display->gdiPalette ? SelectPalette(dc, display->gdiPalette, FALSE) : nullptr;
  if (before) RealizePalette(dc);
  const FullHeader info = Header_For(display);
  const int32_t rowsBelow = raster->height - part.y - part.height;  // Source rows count from the bottom.
  SetStretchBltMode(dc, HALFTONE);
  StretchDIBits(dc, 0, 0, target.cx, target.cy, part.x, rowsBelow, part.width, part.height, bits,
                reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS, SRCCOPY);
  if (before) SelectPalette(dc, before, FALSE);
  ReleaseDC(display->window, dc);
}

}  // namespace

void Present_GDI(const JdecDisplay* display, const JdecRaster* raster, const PicturePart& part, SIZE target) {
  if (!raster) return;
  if (raster->pitch % 4 == 0) {
    Stretch_To_Window(display, raster, raster->rows[raster->height - 1], part, target);
    return;
  }
  uint8_t* aligned = Aligned_Copy(raster);
  if (!aligned) return;
  Stretch_To_Window(display, raster, aligned, part, target);
  Arena_Free(aligned);
}
