#include "decode/speed.h"

#include "pixel/arena.h"

#include <cstdio>

JdecSpeedRegulator* Speed_New(int32_t mode) {
  if (mode != 1 && mode != 2) return nullptr;
  auto* const regulator = static_cast<JdecSpeedRegulator*>(Arena_Alloc_Zeroed(sizeof(JdecSpeedRegulator)));
  if (!regulator) return nullptr;
  regulator->mode = mode;
  Speed_Set(regulator, 1);
  return regulator;
}

int32_t Speed_Free(JdecSpeedRegulator* regulator) {
  if (!regulator) return 0;
  Arena_Free(regulator);
  return 1;
}

int32_t Speed_Set(JdecSpeedRegulator* regulator, int32_t speed) {
  if (!regulator) return 0;
  regulator->speed = speed;
  regulator->speedFactor = speed < 0 ? 1.0 / -static_cast<double>(speed) : speed;
  std::printf("speed=%d, speedx=%f\n", speed, regulator->speedFactor);
  std::fflush(nullptr);
  return 1;
}

int32_t Decoder_Set_Speed(JdecDecoder* decoder, int32_t speed) {
  const JdecSpeedHolder* const holder = decoder->speedState;
  if (!holder || !holder->speedEnabled) return 0;
  return Speed_Set(holder->regulator, speed);
}

JdecSpeedHolder* Speed_Holder_New() {
  auto* const holder = static_cast<JdecSpeedHolder*>(Arena_Alloc_Zeroed(sizeof(JdecSpeedHolder)));
  if (!holder) return nullptr;
  holder->speedEnabled = 1;
  holder->regulator = Speed_New(2);
  if (holder->regulator) return holder;
  Arena_Free(holder);
  return nullptr;
}

void Speed_Holder_Free(JdecSpeedHolder* holder) {
  if (!holder) return;
  Speed_Free(holder->regulator);
  Arena_Free(holder);
}
