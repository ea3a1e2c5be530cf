/* The tables of the process: one set for all decoders, read-only between start-up and shut-down. */
#pragma once

#include <cstdint>

/** Entry i is 2^i - 1; shared by the entropy coder and decoder. */
extern const uint32_t* bitMasks;

/** Sets up all process-wide tables, which lie in static storage, and chooses the kernels. */
void Init_Global_Tables();
/** Releases the tables. The pointers to them are null afterwards. */
void Free_Global_Tables();
void Init_Bit_Masks();
