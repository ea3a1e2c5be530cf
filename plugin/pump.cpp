#include "plugin/pump.h"

#include "decode/ring.h"
#include "plugin/instances.h"

#include "platform/win32.h"

/** Values of pumpState. */
enum : int32_t { PumpIdle = 0, PumpAsked = 1, PumpRunning = 2 };

/** Bytes taken at once. Each read of the ring decides again whether the backlog is skipped. */
static constexpr int32_t PieceSize = 65536;

void Pump_Ask(JdecDecoder* decoder) {
  if (!decoder->prevWndProc || decoder->pumpState != PumpIdle) return;
  if (PostMessageA(decoder->window, PumpMessage, 0, 0)) decoder->pumpState = PumpAsked;
}

void Pump_Run(NPP instance) {
  JdecDecoder* const decoder = Instance_Decoder(instance);
  if (decoder->pumpState == PumpRunning) return;
  decoder->pumpState = PumpRunning;
  DecoderHold hold(decoder);
  uint8_t piece[PieceSize];
  for (int32_t count; !hold.ended && (count = Ring_Read(decoder, piece, PieceSize)) > 0;) {
    int32_t status = 0;
    JDEC_Receive_Data(decoder, count, piece, &status);
  }
  decoder->pumpState = PumpIdle;
}
