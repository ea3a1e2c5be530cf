#include "plugin/instances.h"

#include <algorithm>
#include <iterator>

NPP instanceSlots[MostInstances];
int32_t instanceHighWater = 0;

static DecoderHold* innermostHold = nullptr;

void Clear_Instances() {
  std::fill(std::begin(instanceSlots), std::end(instanceSlots), nullptr);
  instanceHighWater = 0;
}

void Add_Instance(NPP instance) {
  for (int32_t i = 0; i < MostInstances; ++i) {
    if (instanceSlots[i]) continue;
    instanceSlots[i] = instance;
    instanceHighWater = std::max(instanceHighWater, i);
    return;
  }
}

void Remove_Instance(NPP instance) {
  NPP* const end = instanceSlots + instanceHighWater + 1;
  NPP* const slot = std::find(instanceSlots, end, instance);
  if (slot != end) *slot = nullptr;
  for (int32_t i = instanceHighWater; i >= 0 && !instanceSlots[i]; --i) instanceHighWater = i;
}

NPP Find_Instance_By_Window(HWND window) {
  for (int32_t i = 0; i <= instanceHighWater; ++i) {
    const JdecDecoder* const decoder = Instance_Decoder(instanceSlots[i]);
    if (decoder && decoder->window == window) return instanceSlots[i];
  }
  return nullptr;
}

JdecDecoder* Instance_Decoder(NPP instance) { return instance ? static_cast<JdecDecoder*>(instance->pdata) : nullptr; }

static DecoderHold* Find_Hold(const JdecDecoder* decoder) {
  DecoderHold* hold = innermostHold;
  while (hold && hold->decoder != decoder) hold = hold->outer;
  return hold;
}

DecoderHold::DecoderHold(JdecDecoder* held) : decoder(held), outer(innermostHold) { innermostHold = this; }

DecoderHold::~DecoderHold() {
  innermostHold = outer;
  if (!ended) return;
  DecoderHold* const next = Find_Hold(decoder);
  if (next) {
    next->ended = true;
  } else {
    JDEC_Free(decoder);
  }
}

void End_Decoder(JdecDecoder* decoder) {
  DecoderHold* const hold = Find_Hold(decoder);
  if (!hold) return JDEC_Free(decoder);
  hold->ended = true;
  JDEC_Draw_Exit(decoder);
}
