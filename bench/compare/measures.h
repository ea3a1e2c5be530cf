/* Measures that are no rows of the table: growth with the picture, two threads, the delay to the window. All at the best of the
 * levels. */
#pragma once

#include "bench/compare/results.h"

/** Nanoseconds a pixel from 160x112 to 1920x1072, decoding and encoding, of velarto and of libjpeg-turbo. */
bool Measure_Growth(const Results& results, const Gallery& gallery, double seconds, std::string* error);

/** Frames that two threads with a decoder each decode, as a multiple of what one does in the same time; and twice what one second
 *  of processor time brings them, beside one thread: how much they hinder each other on a machine that others use as well. */
bool Measure_Threads(const Results& results, const Gallery& gallery, double seconds, std::string* error);

/** From the last byte of a frame given to the decoder until the window's pixels are the picture's, beside decoding alone. A
 * window of 640x480 on a screen of 32 bits, DirectDraw form. */
bool Measure_Delay(const Results& results, const Gallery& gallery, double seconds, std::string* error);
