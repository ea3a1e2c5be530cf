#include "platform/portable/window/resource.h"

#include "platform/portable/desktop.h"
#include "platform/portable/paint/gdi.h"
#include "platform/portable/system/seam.h"
#include "platform/portable/window/window_record.h"
#include "resources/texts.h"

#include <algorithm>
#include <cstring>

/* The files, from resource_data.S. */
#define RESOURCE_FILE(name) extern "C" const uint8_t Resource_##name[], Resource_##name##_End[]
RESOURCE_FILE(md1);
RESOURCE_FILE(record);
RESOURCE_FILE(stop);
RESOURCE_FILE(close);
RESOURCE_FILE(hand);
RESOURCE_FILE(hand_busy);

struct HICON__ {
  uintptr_t number;
  const uint8_t *begin, *end;  ///< Of the file; none for the system's.
};

namespace {

struct BitmapFile {
  uintptr_t number;
  const uint8_t* begin;
};
const BitmapFile bitmapFiles[] = {{TEMPLATE_BITMAP, Resource_md1},
                                  {RECORD_BITMAP, Resource_record},
                                  {STOP_BITMAP, Resource_stop},
                                  {CLOSE_BITMAP, Resource_close}};

HICON__ cursors[] = {{NORMAL_CURSOR, Resource_hand, Resource_hand_End},
                     {RECORDING_CURSOR, Resource_hand_busy, Resource_hand_busy_End},
                     {reinterpret_cast<uintptr_t>(IDC_ARROW), nullptr, nullptr}};
HCURSOR shownCursor;

struct ResourceText {
  UINT number;
  const char* text;
};
constexpr ResourceText texts[] = {{SAVING_TEXT_ID, SAVING_TEXT}, {IDLE_TEXT_ID, IDLE_TEXT}};

template <class Entry, size_t count>
Entry* Find_Resource(Entry (&entries)[count], uintptr_t number) {
  const auto found = std::find_if(entries, entries + count, [=](const Entry& entry) { return entry.number == number; });
  return found == entries + count ? nullptr : found;
}

constexpr size_t BmpFileHeader = 14, BmpBitsAt = 10;

/** A bitmap's header and colours, aligned. */
struct BitmapHeader {
  BITMAPINFOHEADER info;
  RGBQUAD colors[256];
};

size_t Row_Bytes(int32_t width, int32_t bits) { return (static_cast<size_t>(width) * static_cast<size_t>(bits) + 31) / 32 * 4; }

/** Two pixels a byte to one a byte. */
std::vector<uint8_t> Widen_Pixels(const BITMAPINFOHEADER& header, const uint8_t* pixels) {
  const size_t from = Row_Bytes(header.biWidth, 4), to = Row_Bytes(header.biWidth, 8);
  std::vector<uint8_t> wide(to * static_cast<size_t>(header.biHeight));
  for (size_t y = 0; y < static_cast<size_t>(header.biHeight); ++y) {
    for (size_t x = 0; x < static_cast<size_t>(header.biWidth); ++x) {
      wide[y * to + x] = pixels[y * from + x / 2] >> (x % 2 == 0 ? 4 : 0) & 15;
    }
  }
  return wide;
}

}  // namespace

HBITMAP LoadBitmapA(HMODULE, LPCSTR name) {
  if (Step_Fails(RigStep::LoadBitmap)) return nullptr;
  const BitmapFile* const file = Find_Resource(bitmapFiles, reinterpret_cast<uintptr_t>(name));
  if (!file) return nullptr;
  uint32_t bitsAt = 0;
  std::memcpy(&bitsAt, file->begin + BmpBitsAt, sizeof bitsAt);
  BitmapHeader header = {};
  std::memcpy(&header, file->begin + BmpFileHeader, std::min<size_t>(sizeof header, bitsAt - BmpFileHeader));
  const uint8_t* pixels = file->begin + bitsAt;
  std::vector<uint8_t> wide;
  if (header.info.biBitCount == 4) {
    wide = Widen_Pixels(header.info, pixels);
    pixels = wide.data();
    header.info.biBitCount = 8;
  }
  return CreateDIBitmap(nullptr, &header.info, CBM_INIT, pixels, reinterpret_cast<const BITMAPINFO*>(&header), DIB_RGB_COLORS);
}

HCURSOR LoadCursorA(HINSTANCE, LPCSTR name) { return Find_Resource(cursors, reinterpret_cast<uintptr_t>(name)); }

HCURSOR SetCursor(HCURSOR cursor) {
  HCURSOR before = shownCursor;
  shownCursor = cursor;
  if (cursor != before) Desktop_Cursor_Changed();
  return before;
}

uintptr_t Screen_Cursor() { return shownCursor ? shownCursor->number : 0; }

std::span<const uint8_t> Screen_Cursor_File() {
  if (!shownCursor || !shownCursor->begin) return {};
  return {shownCursor->begin, shownCursor->end};
}

int LoadStringA(HINSTANCE, UINT number, LPSTR text, int size) {
  const ResourceText* const found = Find_Resource(texts, number);
  if (!found || size < 1) return 0;
  const size_t length = std::min(std::strlen(found->text), static_cast<size_t>(size - 1));
  std::memcpy(text, found->text, length);
  text[length] = 0;
  return static_cast<int>(length);
}
