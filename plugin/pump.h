/* From the ring to the decoder: a message to the instance's window, posted when bytes have come, has the window's thread hand
 * them on. */
#pragma once

#include "decode/decoder.h"
#include "plugin/npapi.h"

/** The message, which no one else sends. */
constexpr UINT PumpMessage = WM_APP + 0x56;

/** Posts the message, unless it is under way already or there is no window yet: the ring holds the bytes back then. */
void Pump_Ask(JdecDecoder* decoder);

/** The message's handler: hands the ring's bytes to the instance's decoder until none are left, or the instance is gone. Does
 * nothing when called from within itself. */
void Pump_Run(NPP instance);
