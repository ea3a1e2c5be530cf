/* Asks the user for the name of a file, through a program of the desktop: zenity or kdialog. */
#pragma once

#include "platform/portable/desktop.h"

/** Answers GetOpenFileNameA: gives the chosen name, or nothing when the user declines, the owner ends or WM_QUIT arrives. Until
 * then messages are handled and the owner's top-level window is disabled. Where neither program can be started, the answer is the
 * proposed name in the current folder, with a line on standard error. */
std::optional<std::string> Ask_For_File(const OPENFILENAMEA& dialog);
