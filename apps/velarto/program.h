/* What this program does itself. On Windows one program does everything. Elsewhere windows, HTTP and the camera need libraries of
 * the system that take more memory than any of the other work: a second program beside the first has them. */
#pragma once

#include <CLI/CLI.hpp>

/** Adds the commands that this program carries out; *code: where they leave their exit code. */
void Add_Commands(CLI::App* app, int* code);

/** If the second program is needed for that command line, becomes it, or gives false with *error when it can't be started. True:
 * the command line is for this program. */
bool Keep_Or_Pass_On(int argc, char** argv, std::string* error);
