#include "decode/decoder.h"

#include "decode/frame.h"
#include "decode/global_tables.h"
#include "decode/picture_decode.h"
#include "decode/rasters.h"
#include "decode/speed.h"
#include "display/context.h"
#include "pixel/arena.h"
#include "platform/lock.h"

LONG jdecInitCount = 0;
/** The tables are ready when JDEC_Init returns, on whatever thread it is called. */
static ModuleLock initLock;

int32_t VELARTO_CDECL JDEC_Init(void) {
  const LockHold hold(initLock);
  if (++jdecInitCount == 1) Init_Global_Tables();
  return 1;
}

void VELARTO_CDECL JDEC_Exit(void) {
  const LockHold hold(initLock);
  if (--jdecInitCount >= 1) return;
  Free_Global_Tables();
  jdecInitCount = 0;
}

/** Allocates what the decoder owns. False without memory; Decoder_Release then frees what is there. */
static bool Decoder_Fill(JdecDecoder* decoder) {
  decoder->codec = Codec_New(decoder->width, decoder->height);
  if (!decoder->codec) return false;
  Codec_Set_Quality(decoder->codec, StartQuality);
  decoder->assemblyBuffer = static_cast<uint8_t*>(Arena_Alloc(StreamBufferSize, nullptr));
  decoder->ringStart = static_cast<uint8_t*>(Arena_Alloc(StreamBufferSize, nullptr));
  if (!decoder->assemblyBuffer || !decoder->ringStart || !Build_Rasters(decoder)) return false;
  decoder->ringSize = StreamBufferSize;
  decoder->ringEnd = decoder->ringStart + StreamBufferSize;
  decoder->ringRead = decoder->ringWrite = decoder->ringStart;
  decoder->lock = CreateMutexA(nullptr, FALSE, nullptr);
  if (!decoder->lock) return false;
  decoder->speedState = Speed_Holder_New();
  return decoder->speedState != nullptr;
}

static void Decoder_Release(JdecDecoder* decoder) {
  Arena_Free(decoder->assemblyBuffer);
  Free_Rasters(decoder);
  Codec_Free(decoder->codec);
  Arena_Free(decoder->ringStart);
  if (decoder->lock) CloseHandle(decoder->lock);
  Speed_Holder_Free(decoder->speedState);
  Arena_Free(decoder);
}

JdecDecoder* VELARTO_CDECL JDEC_New(int32_t width, int32_t height) {
  if (!Picture_Size_Allowed(width, height)) return nullptr;
  auto* const decoder = static_cast<JdecDecoder*>(Arena_Alloc_Zeroed(sizeof(JdecDecoder)));
  if (!decoder) return nullptr;
  decoder->width = width;
  decoder->height = height;
  SetRect(&decoder->srcRect, 0, 0, width, height);
  SetRect(&decoder->dstRect, 0, 0, width, height);
  if (Decoder_Fill(decoder)) return decoder;
  Decoder_Release(decoder);
  return nullptr;
}

void VELARTO_CDECL JDEC_Free(JdecDecoder* decoder) {
  if (!decoder) return;
  if (decoder->window) JDEC_Draw_Exit(decoder);
  Decoder_Release(decoder);
}

void VELARTO_CDECL JDEC_Flush(JdecDecoder* decoder) {
  if (!decoder) return;
  decoder->assemblyFill = 0;
  decoder->frameOpen = 0;
  decoder->endSearched = 0;
  Planes_Darken(decoder->codec->planes);
  Redraw_Frame(decoder);
}

/** Makes the decoder headless. False, with nothing changed, without memory for its raster. */
static bool Decoder_Go_Headless(JdecDecoder* decoder) {
  const int32_t before = decoder->headless;
  decoder->headless = 1;
  if (Build_Rasters(decoder)) return true;
  decoder->headless = before;
  return false;
}

/** Stores the decoder's display and gives it the draw callback that was kept. */
static void Decoder_Adopt_Display(JdecDecoder* decoder, JdecDisplay* display) {
  WaitForSingleObject(decoder->lock, INFINITE);
  display->drawCallback = decoder->keptCallback;
  display->drawCallbackUser = decoder->keptCallbackUser;
  decoder->display = display;
  ReleaseMutex(decoder->lock);
}

/** Makes a display for the window, and a raster of the display's depth if it has another one. False, with nothing changed, if one
 * can't be made. */
static bool Decoder_Show_In(JdecDecoder* decoder, HWND window) {
  JdecDisplay* const display = Display_Create(window, decoder->width, decoder->height);
  if (!display) return false;
  if (decoder->codec->raster->bitsPerPixel != display->displayBits && !Replace_Raster(decoder, display->displayBits)) {
    Display_Destroy(display);
    return false;
  }
  decoder->headless = 0;
  Decoder_Adopt_Display(decoder, display);
  GetClientRect(window, &decoder->srcRect);
  return true;
}

int32_t VELARTO_CDECL JDEC_Draw_Init(JdecDecoder* decoder, VelartoWindow window) {
  if (!decoder || decoder->display || (window && !IsWindow(window))) return 0;
  if (!(window ? Decoder_Show_In(decoder, window) : Decoder_Go_Headless(decoder))) return 0;
  decoder->window = window;
  Redraw_Frame(decoder);
  return 1;
}

void VELARTO_CDECL JDEC_Draw_Exit(JdecDecoder* decoder) {
  if (!decoder) return;
  WaitForSingleObject(decoder->lock, INFINITE);
  decoder->hidden = 1;
  JdecDisplay* const display = decoder->display;
  decoder->display = nullptr;
  Display_Destroy(display);
  ReleaseMutex(decoder->lock);
}

void VELARTO_CDECL JDEC_show(JdecDecoder* decoder, int32_t show) {
  if (decoder) decoder->hidden = show == 0;
}

void VELARTO_CDECL JDEC_get_size(JdecDecoder* decoder, int32_t* width, int32_t* height) {
  if (!decoder) return;
  if (width) *width = decoder->width;
  if (height) *height = decoder->height;
}

int32_t VELARTO_CDECL JDEC_Get_Quality(JdecDecoder* decoder) { return decoder ? decoder->codec->quality : 0; }

/** Buffers of a new picture size, allocated before the old ones are freed. */
struct SizedBuffers {
  int32_t** coefY;
  int32_t** coefCb;
  int32_t** coefCr;
  JdecRaster* raster;
  JdecPlanes* planes;
};

static void Sized_Buffers_Free(const SizedBuffers& buffers) {
  Coef_Plane_Free(buffers.coefY);
  Coef_Plane_Free(buffers.coefCb);
  Coef_Plane_Free(buffers.coefCr);
  Arena_Free(buffers.raster);
  Arena_Free(buffers.planes);
}

static void Codec_Exchange_Buffers(JdecCodec* codec, const SizedBuffers& buffers) {
  Sized_Buffers_Free({codec->coefY, codec->coefCb, codec->coefCr, codec->raster, codec->planes});
  codec->coefY = buffers.coefY;
  codec->coefCb = buffers.coefCb;
  codec->coefCr = buffers.coefCr;
  codec->raster = buffers.raster;
  codec->planes = buffers.planes;
}

/** Destroys the display of the old size. Its draw callback is kept for the new one; another thread may replace it until then. */
static void Decoder_Begin_Size_Change(JdecDecoder* decoder) {
  WaitForSingleObject(decoder->lock, INFINITE);
  const JdecDisplay* const old = decoder->display;
  decoder->keptCallback = old ? old->drawCallback : nullptr;
  decoder->keptCallbackUser = old ? old->drawCallbackUser : 0;
  decoder->sizeChanging = old != nullptr;
  const int32_t hidden = decoder->hidden;
  JDEC_Draw_Exit(decoder);
  decoder->hidden = hidden;
  ReleaseMutex(decoder->lock);
}

static void Decoder_End_Size_Change(JdecDecoder* decoder) {
  WaitForSingleObject(decoder->lock, INFINITE);
  decoder->sizeChanging = 0;
  decoder->keptCallback = nullptr;
  decoder->keptCallbackUser = 0;
  ReleaseMutex(decoder->lock);
}

bool Decoder_Change_Size(JdecDecoder* decoder, int32_t width, int32_t height) {
  // A decoder that has never had a window becomes headless with its first change.
  const bool headless = decoder->window == nullptr;
  const SizedBuffers buffers = {Coef_Plane_New(width, height), Coef_Plane_New(width / 2, height / 2),
                                Coef_Plane_New(width / 2, height / 2), Raster_New(width, height, Raster_Depth(headless)),
                                Planes_New(width, height, 4, 1)};
  if (!buffers.coefY || !buffers.coefCb || !buffers.coefCr || !buffers.raster || !buffers.planes) {
    Sized_Buffers_Free(buffers);
    return false;
  }
  Planes_Darken(buffers.planes);

  Decoder_Begin_Size_Change(decoder);
  decoder->width = decoder->codec->width = width;
  decoder->height = decoder->codec->height = height;
  Codec_Exchange_Buffers(decoder->codec, buffers);
  decoder->rasterFormat = NoPixels;
  if (headless) {
    decoder->headless = 1;
  } else {
    Decoder_Show_In(decoder, decoder->window);
  }
  Decoder_End_Size_Change(decoder);
  return true;
}
