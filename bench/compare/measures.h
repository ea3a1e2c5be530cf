/* Measurements outside the table: growth with the picture size, two threads, the delay to the window. All at the highest of the
 * levels. */
#pragma once

#include "bench/compare/results.h"

/** Nanoseconds a pixel from 160x112 to 1920x1072, decoding and encoding, of velarto and of libjpeg-turbo. */
bool Measure_Growth(const Results& results, const Gallery& gallery, double seconds, std::string* error);

/** Frames that two threads decode, with a decoder each, as a multiple of those of one thread in the same time. Also twice the
 * ratio of frames in a second of processor time, which shows how much the threads slow each other down even on a machine that is
 * busy with other work. */
bool Measure_Threads(const Results& results, const Gallery& gallery, double seconds, std::string* error);

/** Time from the last byte of a frame until the window has its pixels, compared with decoding alone. The window has 640x480
 * pixels, on a screen of 32 bits, in the DirectDraw form. */
bool Measure_Delay(const Results& results, const Gallery& gallery, double seconds, std::string* error);
