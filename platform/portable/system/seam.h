/* Where tests reach into the layer. Built with VELARTO_RIG, the layer calls rig/rig.cpp here, which rig.h controls. The shipped
 * layer is built without: each function below is empty, and the compiler leaves nothing of it. This is the only place that knows
 * of the two builds. For the files of the layer alone. */
#pragma once

#include "platform/portable/system/kernel.h"
#include "platform/portable/system/rig_step.h"

#ifdef VELARTO_RIG

/** Counts the call and tells whether it is to fail; *code, which may be null, is then the code to give. Any thread. */
bool Step_Fails(RigStep step, HRESULT* code = nullptr);
/** Count the objects alive. Any thread. */
void Object_Made();
void Object_Ended();

/** The tick or time that a test has set; false if none is. */
bool Tick_Is_Set(DWORD* tick);
bool Local_Time_Is_Set(SYSTEMTIME* time);

/** Keep a text for the test to read. */
void Note_Debug_Output(LPCSTR text);
void Note_Message(LPCSTR text, LPCSTR caption);

/** Forget what the test has set for the screen before. */
void Note_Screen_Set_Up();
void Note_Screen_Removed();

/** Guards around an off-screen surface: bytes after each row, and rows above the first and below the last. */
constexpr size_t GuardBytes = 32, GuardRows = 1;
/** Fills the guards of a zeroed store, whose rows have `used` bytes of pixels each and lie `pitch` bytes apart. */
void Fill_Guards(uint8_t* store, size_t bytes, size_t pitch, size_t used);

#else

inline bool Step_Fails(RigStep, HRESULT* = nullptr) { return false; }
inline void Object_Made() {}
inline void Object_Ended() {}
inline bool Tick_Is_Set(DWORD*) { return false; }
inline bool Local_Time_Is_Set(SYSTEMTIME*) { return false; }
inline void Note_Debug_Output(LPCSTR) {}
inline void Note_Message(LPCSTR, LPCSTR) {}
inline void Note_Screen_Set_Up() {}
inline void Note_Screen_Removed() {}
constexpr size_t GuardBytes = 0, GuardRows = 0;
inline void Fill_Guards(uint8_t*, size_t, size_t, size_t) {}

#endif
