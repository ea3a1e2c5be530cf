/* What tests supply to the portable layer, and what they see of it: steps that fail, ticks set by hand, lost surfaces, counts of
 * objects, guards around surfaces, texts read back. Only the build of the layer that tests and fuzzers link has it (CMake target
 * velarto_system_rig); the shipped library and programs do without (system/seam.h).
 *
 * All of it is process-wide, and used by one thread unless a comment allows any. Screen_Set_Up and Screen_Remove reset failures,
 * counts of calls and texts. */
#pragma once

#include "platform/portable/desktop.h"
#include "platform/portable/paint/ddraw.h"
#include "platform/portable/system/kernel.h"
#include "platform/portable/system/rig_step.h"

#include <optional>
#include <string>
#include <vector>

/** From now on lets `after` calls of the step pass, then makes `times` calls fail, with `code` where the step gives an HRESULT.
 * A new setting of the same step replaces the old one. May be called from a draw callback. */
void Rig_Fail(RigStep step, int32_t after = 0, int32_t times = INT32_MAX, HRESULT code = E_FAIL);
void Rig_Fail_Nothing();
/** How often a step was asked for since the screen was set up. */
int32_t Rig_Calls(RigStep step);

/** Makes all surfaces lost, until each is restored. */
void Rig_Lose_Surfaces();

/** Memory, handles and objects of the layer that are alive: heap blocks, mutexes, files, windows, DCs, GDI objects, DirectDraw
 * objects, open registry keys, hooks. */
int32_t Rig_Objects_Alive();

/** Moves the window to that monitor, 0 the primary one. */
void Rig_Move_To_Monitor(HWND window, int32_t monitor);

/** Pixels of a window's client area, top row first, rows at *pitch bytes, in the screen's depth. Null if it has none. */
const uint8_t* Rig_Window_Pixels(HWND window, int32_t* width, int32_t* height, int32_t* pitch);
/** Colour of a client pixel as 0xRRGGBB; 0xFFFFFFFF outside. */
uint32_t Rig_Window_Color(HWND window, int32_t x, int32_t y);
/** The pixels of an off-screen surface, top row first. */
const uint8_t* Rig_Surface_Pixels(IDirectDrawSurface* surface, int32_t* width, int32_t* height, int32_t* pitch);
/** Whether everything around an off-screen surface's pixels still holds what it was filled with: nothing was written between
 * its rows, above the first and below the last. */
bool Rig_Guards_Whole(const IDirectDrawSurface* surface);

/** What was sent to the debug output, or to message boxes that no desktop shows ("caption|text"), since the last look. */
std::vector<std::string> Rig_Take_Debug_Output();
std::vector<std::string> Rig_Take_Messages();

/** Sets the millisecond tick that GetTickCount gives, and the time of day, until Rig_Real_Time or Screen_Remove. */
void Rig_Set_Tick(uint32_t tick);
void Rig_Set_Local_Time(const SYSTEMTIME& time);
void Rig_Real_Time();

/** Sets a registry value, and makes its key: a root's name and the path, as in "HKEY_CURRENT_USER\\Software". Any thread, as the
 * next two; the registry outlives the screen. */
void Rig_Set_Registry(const std::string& key, const std::string& name, uint32_t type, const std::vector<uint8_t>& data);
/** Reads a registry value; nothing if it isn't there. */
std::optional<std::vector<uint8_t>> Rig_Registry(const std::string& key, const std::string& name);
/** Empties the registry. */
void Rig_Forget_Registry();

/** The dialog opened last that is still open, or null. */
HWND Rig_Dialog();
/** The text that a tooltip would show for that window; empty without one. */
std::string Rig_Tooltip_Text(HWND window);
