/* The callback after each frame shown (velarto.h). */
#include "decode/decoder.h"
#include "display/context.h"

void VELARTO_CDECL JDEC_register_draw_callback(JdecDecoder* decoder, VelartoDrawCallback callback, uintptr_t user) {
  if (!decoder) return;
  // While this is held, no frame of another size destroys the display.
  WaitForSingleObject(decoder->lock, INFINITE);
  if (JdecDisplay* const display = decoder->display) {
    if (display->lock) WaitForSingleObject(display->lock, INFINITE);
    display->drawCallback = callback;
    display->drawCallbackUser = user;
    if (display->lock) ReleaseMutex(display->lock);
  } else if (decoder->sizeChanging) {
    decoder->keptCallback = callback;
    decoder->keptCallbackUser = user;
  }
  ReleaseMutex(decoder->lock);
}
