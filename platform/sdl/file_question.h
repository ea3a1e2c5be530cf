/* Asks the user for the name of a file, by a program of the desktop: zenity or kdialog. */
#pragma once

#include "platform/portable/desktop.h"

/** Answers GetOpenFileNameA: the chosen name, or nothing when the user declines, and when the owner ends or WM_QUIT comes
 * meanwhile. Messages run on while the user thinks, with the owner's top-level window disabled. Where neither program can be
 * started, the answer is the proposed name in the current folder, which is told on standard error. */
std::optional<std::string> Ask_For_File(const OPENFILENAMEA& dialog);
