/* The pump takes bytes from the ring to the decoder. It is a message that is posted to the instance's window when bytes have
 * come, so that the window's thread decodes them. */
#pragma once

#include "decode/decoder.h"
#include "plugin/npapi.h"

/** The message. Nothing else sends one of this number. */
constexpr UINT PumpMessage = WM_APP + 0x56;

/** Posts the message, unless it is posted or being handled already, or without a window: the bytes stay in the ring. */
void Pump_Ask(JdecDecoder* decoder);

/** Handles the message: gives the ring's bytes to the instance's decoder until the ring is empty or the instance has ended. Does
 *  nothing in a recursive call. */
void Pump_Run(NPP instance);
