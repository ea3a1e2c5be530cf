#include "plugin/instances.h"

#include <algorithm>
#include <iterator>

NPP instanceSlots[MostInstances];
int32_t instanceHighWater = 0;

/** Decoders of the live instances that found no free slot. */
static JdecDecoder* firstUnlisted = nullptr;
static DecoderHold* innermostHold = nullptr;

void Clear_Instances() {
  std::fill(std::begin(instanceSlots), std::end(instanceSlots), nullptr);
  instanceHighWater = 0;
  firstUnlisted = nullptr;
}

void Add_Instance(NPP instance) {
  for (int32_t i = 0; i < MostInstances; ++i) {
    if (instanceSlots[i]) continue;
    instanceSlots[i] = instance;
    instanceHighWater = std::max(instanceHighWater, i);
    return;
  }
  JdecDecoder* const decoder = Instance_Decoder(instance);
  decoder->nextUnlisted = firstUnlisted;
  firstUnlisted = decoder;
}

/** The slot of an instance, or null. After NP_Shutdown instanceHighWater is 0, but the slots still have their instances. */
static NPP* Find_Slot(NPP instance) {
  NPP* const used = instanceSlots + instanceHighWater + 1;
  NPP* slot = std::find(instanceSlots, used, instance);
  if (slot == used) slot = std::find(used, std::end(instanceSlots), instance);
  return slot == std::end(instanceSlots) ? nullptr : slot;
}

/** Where the list of those without a slot points to the instance's decoder, or null. */
static JdecDecoder** Find_Unlisted(NPP instance) {
  JdecDecoder** link = &firstUnlisted;
  while (*link && (*link)->npInstance != instance) link = &(*link)->nextUnlisted;
  return *link ? link : nullptr;
}

bool Instance_Lives(NPP instance) { return instance && (Find_Slot(instance) || Find_Unlisted(instance)); }

void Remove_Instance(NPP instance) {
  if (NPP* const slot = Find_Slot(instance)) {
    *slot = nullptr;
  } else if (JdecDecoder** const link = Find_Unlisted(instance)) {
    *link = (*link)->nextUnlisted;
  }
  for (int32_t i = instanceHighWater; i >= 0 && !instanceSlots[i]; --i) instanceHighWater = i;
}

NPP Find_Instance_By_Window(HWND window) {
  for (int32_t i = 0; i <= instanceHighWater; ++i) {
    const JdecDecoder* const decoder = Instance_Decoder(instanceSlots[i]);
    if (decoder && decoder->window == window) return instanceSlots[i];
  }
  return nullptr;
}

JdecDecoder* Find_Partner(const JdecDecoder* decoder) {
  const auto fits = [=](const JdecDecoder* other) {
    return other && other != decoder && other->window == decoder->window && other->prevWndProc;
  };
  for (const NPP instance : instanceSlots) {
    if (fits(Instance_Decoder(instance))) return Instance_Decoder(instance);
  }
  JdecDecoder* other = firstUnlisted;
  while (other && !fits(other)) other = other->nextUnlisted;
  return other;
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
