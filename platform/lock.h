/* Locks for what all decoders of the process share. */
#pragma once

#include "platform/win32.h"

/** A recursive lock, to be a static object: it is made and ended with the module. */
struct ModuleLock {
  CRITICAL_SECTION section;

  ModuleLock() { InitializeCriticalSection(&section); }
  ~ModuleLock() { DeleteCriticalSection(&section); }
  ModuleLock(const ModuleLock&) = delete;
};

/** Holds a lock until the block ends. */
struct LockHold {
  ModuleLock& lock;

  explicit LockHold(ModuleLock& taken) : lock(taken) { EnterCriticalSection(&lock.section); }
  ~LockHold() { LeaveCriticalSection(&lock.section); }
  LockHold(const LockHold&) = delete;
};
