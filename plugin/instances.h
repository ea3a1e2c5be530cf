/* The plug-in's instances in this process, each with one decoder at its pdata. All of it runs on the browser's thread. */
#pragma once

#include "decode/decoder.h"
#include "plugin/npapi.h"

constexpr int32_t MostInstances = 1024;

/** Live instances; null marks a free slot. */
extern NPP instanceSlots[MostInstances];
/** Highest slot that a search must look at. */
extern int32_t instanceHighWater;

/** Empties all slots. */
void Instances_Clear();

/** Puts an instance into the first free slot. Without one it stays unlisted: its window then gets only default handling. */
void Instances_Add(NPP instance);

/** Takes an instance out of its slot, if it has one, and lowers the mark to one above the highest that is left. */
void Instances_Remove(NPP instance);

/** The instance whose decoder shows in that window, or null. */
NPP Find_Instance_By_Window(HWND window);

/** The instance's decoder; null for a null instance. */
JdecDecoder* Instance_Decoder(NPP instance);

/** Keeps a decoder in memory for as long as it is in scope: what shows pictures runs the caller's draw callback, in which the
 * instance may end. */
struct DecoderHold {
  JdecDecoder* decoder;
  DecoderHold* outer;
  bool ended = false;  ///< The instance has ended meanwhile; the decoder goes with the last hold.

  explicit DecoderHold(JdecDecoder* held);
  ~DecoderHold();
  DecoderHold(const DecoderHold&) = delete;
  DecoderHold& operator=(const DecoderHold&) = delete;
};

/** Frees the decoder of an instance that ends. One that is held only loses its display and decodes nothing more for now. */
void Decoder_End(JdecDecoder* decoder);
