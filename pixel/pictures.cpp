#include "pixel/pictures.h"

#include "pixel/arena.h"

#include <cstring>

/** Takes `count` records from an arena. */
template <typename T>
static T* Carve(uint8_t** arena, size_t count) {
  return static_cast<T*>(Arena_Alloc(count * sizeof(T), arena));
}

/** The pixels of a raster start at a multiple of this, for the vector instructions that write them. */
static constexpr size_t CacheLine = 64;

static size_t Size(int32_t n) { return static_cast<size_t>(n); }

JdecRaster* Raster_New(int32_t width, int32_t height, int32_t bitsPerPixel) {
  const int32_t pitch = bitsPerPixel / 8 * width;
  const size_t size = sizeof(JdecRaster) + Size(height) * (sizeof(uint8_t*) + Size(pitch)) + CacheLine;
  auto* arena = static_cast<uint8_t*>(Arena_Alloc_Zeroed(size));
  if (!arena) return nullptr;
  auto* const raster = Carve<JdecRaster>(&arena, 1);
  *raster = {width, height, bitsPerPixel, pitch, Carve<uint8_t*>(&arena, Size(height))};
  arena += (CacheLine - reinterpret_cast<uintptr_t>(arena) % CacheLine) % CacheLine;
  for (int32_t i = height - 1; i >= 0; --i) raster->rows[i] = Carve<uint8_t>(&arena, Size(pitch));
  return raster;
}

static uint8_t** Carve_Rows(uint8_t** table, int32_t width, int32_t height, uint8_t** arena) {
  for (int32_t i = 0; i < height; ++i) table[i] = Carve<uint8_t>(arena, Size(width));
  return table;
}

JdecPlanes* Planes_New(int32_t width, int32_t height, int32_t lumaFactor, int32_t chromaFactor) {
  const int32_t divisor = lumaFactor == chromaFactor ? 1 : 2;
  const int32_t chromaWidth = width / divisor, chromaHeight = height / divisor;
  const size_t tables = (Size(height) + 2 * Size(chromaHeight)) * sizeof(uint8_t*);
  const size_t samples = Size(width) * Size(height) + 2 * Size(chromaWidth) * Size(chromaHeight);
  auto* arena = static_cast<uint8_t*>(Arena_Alloc(sizeof(JdecPlanes) + tables + samples, nullptr));
  if (!arena) return nullptr;
  // The tables come first, so that pointers stay aligned whatever the number of samples.
  auto* const planes = Carve<JdecPlanes>(&arena, 1);
  auto** const yRows = Carve<uint8_t*>(&arena, Size(height));
  auto** const cbRows = Carve<uint8_t*>(&arena, Size(chromaHeight));
  auto** const crRows = Carve<uint8_t*>(&arena, Size(chromaHeight));
  *planes = {.lumaFactor = lumaFactor,
             .chromaFactor = chromaFactor,
             .yWidth = width,
             .yHeight = height,
             .yRows = Carve_Rows(yRows, width, height, &arena),
             .crWidth = chromaWidth,
             .crHeight = chromaHeight,
             .crRows = crRows,
             .cbWidth = chromaWidth,
             .cbHeight = chromaHeight,
             .cbRows = Carve_Rows(cbRows, chromaWidth, chromaHeight, &arena)};
  Carve_Rows(crRows, chromaWidth, chromaHeight, &arena);
  return planes;
}

static void Fill_Rows(uint8_t** rows, int32_t width, int32_t height, int32_t value) {
  for (int32_t i = 0; i < height; ++i) std::memset(rows[i], value, Size(width));
}

void Planes_Darken(JdecPlanes* planes) {
  Fill_Rows(planes->yRows, planes->yWidth, planes->yHeight, 0);
  Fill_Rows(planes->cbRows, planes->cbWidth, planes->cbHeight, 127);
  Fill_Rows(planes->crRows, planes->crWidth, planes->crHeight, 127);
}
