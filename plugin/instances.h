/* The plug-in's instances in this process, each with one decoder at its pdata. All of it runs on the browser's thread. */
#pragma once

#include "decode/decoder.h"
#include "plugin/npapi.h"

constexpr int32_t MostInstances = 1024;
/** Bytes of a decoder's urlBuffer. */
constexpr size_t UrlSize = 1024;

/** Live instances; null marks a free slot. */
extern NPP instanceSlots[MostInstances];
/** Highest slot that a search must look at. */
extern int32_t instanceHighWater;

/** Empties all slots. The instances that were in them, and those without one, count as dead. */
void Clear_Instances();

/** Puts an instance, which has its decoder, into the first free slot. If there is none it lives on unlisted: its window then gets
 *  default handling only. */
void Add_Instance(NPP instance);

/** Takes an instance, which still has its decoder, out of the live ones, and lowers instanceHighWater to one above the highest
 *  used slot. */
void Remove_Instance(NPP instance);

/** Whether the instance was added and not removed since. Any pointer may be asked for: it is compared, never followed. */
bool Instance_Lives(NPP instance);

/** The instance in a slot whose decoder has that window, or null. */
NPP Find_Instance_By_Window(HWND window);

/** The live decoder, other than that one, that has taken over the same window; null if there is none. */
JdecDecoder* Find_Partner(const JdecDecoder* decoder);

/** The decoder of a live instance. Null for null. */
JdecDecoder* Instance_Decoder(NPP instance);

/** Keeps a decoder allocated as long as it is in scope. Code that shows pictures needs one: it calls the draw callback, in which
 *  the instance may end. */
struct DecoderHold {
  JdecDecoder* decoder;
  DecoderHold* outer;
  bool ended = false;  ///< The instance has ended; the decoder is freed with the last hold.

  explicit DecoderHold(JdecDecoder* held);
  ~DecoderHold();
  DecoderHold(const DecoderHold&) = delete;
  DecoderHold& operator=(const DecoderHold&) = delete;
};

/** Frees the decoder of an instance that ends. While it is held, only its display is destroyed, and it decodes nothing more. */
void End_Decoder(JdecDecoder* decoder);
