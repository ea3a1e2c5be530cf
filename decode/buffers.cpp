#include "decode/buffers.h"

#include "display/context.h"

#include <cstring>

void* Arena_Alloc(size_t size, uint8_t** arena) {
  if (!arena) return HeapAlloc(GetProcessHeap(), 0, size);
  uint8_t* const piece = *arena;
  *arena += size;
  return piece;
}

void* Arena_Alloc_Zeroed(size_t size) { return HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, size); }

void Arena_Free(void* block) {
  if (block) HeapFree(GetProcessHeap(), 0, block);
}

/** Carves `count` records out of an arena. */
template <typename T>
static T* Carve(uint8_t** arena, size_t count) {
  return static_cast<T*>(Arena_Alloc(count * sizeof(T), arena));
}

/** The pixels of a raster start at a multiple of this: kernels write them by vectors. */
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

int32_t** Coef_Plane_New(int32_t width, int32_t height) {
  const size_t rows = Size(height / 8);
  // A row holds width * 8 words, of which those of whole blocks are used.
  const size_t rowBytes = Size(width) * 8 * sizeof(int32_t);
  // At least a byte: a plane without rows is a plane all the same.
  auto* arena = static_cast<uint8_t*>(Arena_Alloc_Zeroed(rows * (rowBytes + sizeof(int32_t*)) + 1));
  if (!arena) return nullptr;
  auto** const table = Carve<int32_t*>(&arena, rows);
  for (size_t i = 0; i < rows; ++i) table[i] = static_cast<int32_t*>(Arena_Alloc(rowBytes, &arena));
  return table;
}

void Coef_Plane_Free(int32_t** plane) { Arena_Free(plane); }

int32_t Raster_Depth(int32_t headless) {
  if (headless) return 24;
  const HDC screen = GetDC(nullptr);
  const int32_t bits = screen ? GetDeviceCaps(screen, BITSPIXEL) * GetDeviceCaps(screen, PLANES) : 24;
  if (screen) ReleaseDC(nullptr, screen);
  return bits == 8 || bits == 16 || bits == 32 ? bits : 24;
}

int32_t Build_Rasters(JdecDecoder* decoder) {
  JdecRaster* const raster = Raster_New(decoder->width, decoder->height, Raster_Depth(decoder->headless));
  JdecPlanes* const planes = Planes_New(decoder->width, decoder->height, 4, 1);
  if (!raster || !planes) {
    Arena_Free(raster);
    Arena_Free(planes);
    return 0;
  }
  Planes_Darken(planes);
  Free_Rasters(decoder);
  decoder->codec->raster = raster;
  decoder->codec->planes = planes;
  return 1;
}

void Free_Rasters(JdecDecoder* decoder) {
  if (!decoder || !decoder->codec || !decoder->codec->raster) return;
  JdecCodec* const codec = decoder->codec;
  if (decoder->display) decoder->display->lastRaster = nullptr;
  Arena_Free(codec->raster);
  Arena_Free(codec->planes);
  codec->raster = nullptr;
  codec->planes = nullptr;
}
