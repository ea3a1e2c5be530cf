#include "plugin/pump.h"

#include "decode/ring.h"
#include "plugin/instances.h"

#include "platform/win32.h"

/** Values of pumpState. */
enum : int32_t { PumpIdle = 0, PumpAsked = 1, PumpRunning = 2 };

/** Bytes taken at once. Each read of the ring decides again whether the backlog is skipped. */
static constexpr int32_t PieceSize = 65536;

/** Most messages of the number that are looked at for that of an instance which ends. One that is left is nobody's. */
static constexpr int32_t MostTaken = 16;

/** Its address marks the messages of this library: another copy of it in the process registers the same number. */
static const char ownMark = 0;

static LPARAM Own_Mark() { return reinterpret_cast<LPARAM>(&ownMark); }

UINT Pump_Message() {
  static UINT number = 0;
  if (number == 0) number = RegisterWindowMessageA("velarto plug-in pump");
  return number;
}

void Pump_Ask(JdecDecoder* decoder) {
  if (!decoder->prevWndProc || decoder->pumpState != PumpIdle || Pump_Message() == 0) return;
  const auto instance = reinterpret_cast<WPARAM>(decoder->npInstance);
  if (PostMessageA(decoder->window, Pump_Message(), instance, Own_Mark())) decoder->pumpState = PumpAsked;
}

static void Pump_Run(JdecDecoder* decoder) {
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

bool Pump_Handle(HWND window, UINT number, WPARAM wParam, LPARAM lParam) {
  const auto instance = reinterpret_cast<NPP>(wParam);
  if (number != Pump_Message() || lParam != Own_Mark() || !Instance_Lives(instance)) return false;
  JdecDecoder* const decoder = Instance_Decoder(instance);
  if (decoder->window != window) return false;
  Pump_Run(decoder);
  return true;
}

void Pump_Forget(JdecDecoder* decoder) {
  if (decoder->pumpState != PumpAsked) return;
  decoder->pumpState = PumpIdle;
  struct {
    WPARAM wParam;
    LPARAM lParam;
  } others[MostTaken];
  int32_t count = 0;
  const UINT number = Pump_Message();
  for (MSG message; count < MostTaken && PeekMessageA(&message, decoder->window, number, number, PM_REMOVE); ++count) {
    if (message.message == WM_QUIT) {  // It comes whatever is asked for, after all others.
      PostQuitMessage(static_cast<int>(message.wParam));
      break;
    }
    if (message.lParam == Own_Mark() && message.wParam == reinterpret_cast<WPARAM>(decoder->npInstance)) break;
    others[count] = {message.wParam, message.lParam};
  }
  for (int32_t i = 0; i < count; ++i) PostMessageA(decoder->window, number, others[i].wParam, others[i].lParam);
}
