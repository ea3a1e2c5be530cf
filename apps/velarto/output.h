/* The tool's output and messages. A decoder prints a line of its own to standard output; so that it isn't mixed into the tool's
 * output, the tool writes to a duplicate, and standard output is redirected to standard error. */
#pragma once

#include <cstdio>
#include <string>

/** Exit codes. */
constexpr int ExitDone = 0, ExitFailed = 1, ExitUsage = 2;

/** Redirects standard output. Called once, first. */
void Output_Open();

/** The stream of the tool's own output. */
FILE* Output();

/** Writes the buffered output. Gives `code`; or ExitFailed, with a message, when output could not be written. A reader that has
 *  closed the pipe is no failure. */
int Output_Finish(int code);

/** False once a write has failed. */
bool Output_Good();

/** Writes "velarto: MESSAGE" as a line to standard error. Gives ExitFailed. */
int Report(const std::string& message);

/** Text of the last failure of the C library. */
std::string Error_Text();

/** A progress bar on standard error, drawn if that is a terminal and the work takes more than a second. */
struct Progress {
  double start = 0;      ///< Seconds; 0 before the first call.
  double lastDrawn = 0;  ///< Seconds.
  bool drawn = false;
};

/** Draws "done of total" (any unit), followed by a note. total 0: not known, the note alone is drawn. */
void Progress_Show(Progress* progress, int64_t done, int64_t total, const std::string& note);
/** Removes the bar. */
void Progress_End(Progress* progress);
