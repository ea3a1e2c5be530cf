/* The tool's two ways to speak. A decoder writes a line of its own to standard output, so the tool keeps that for itself: it
 * writes to a duplicate, and standard output leads to standard error. */
#pragma once

#include <cstdio>
#include <string>

/** Exit codes. */
constexpr int ExitDone = 0, ExitFailed = 1, ExitUsage = 2;

/** Takes standard output away from the rest of the program. Called once, first. */
void Output_Open();

/** The stream of the tool's own output. */
FILE* Output();

/** Writes out what is buffered. Gives `code`; or ExitFailed, with a word to the user, when output could not be written; a reader
 *  that has gone away is no failure. */
int Output_Finish(int code);

/** False once a write has failed: going on is no use. */
bool Output_Good();

/** Writes "velarto: MESSAGE" as a line to standard error. Gives ExitFailed. */
int Report(const std::string& message);

/** Text of the last failure of the C library. */
std::string Error_Text();

/** A bar on standard error: drawn when that is a terminal and the work has taken a second already. */
struct Progress {
  double start = 0;      ///< Seconds; 0 before the first call.
  double lastDrawn = 0;  ///< Seconds.
  bool drawn = false;
};

/** Draws "done of total" (any unit), with a note behind it. total 0: not known, the note alone is drawn. */
void Progress_Show(Progress* progress, int64_t done, int64_t total, const std::string& note);
/** Wipes the bar away. */
void Progress_End(Progress* progress);
