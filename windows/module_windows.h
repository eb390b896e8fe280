// The library as a whole: what keeps it in the memory of its host.
//
// Objects, the host's locks and open windows make it busy. Once used it stays
// loaded whatever COM decides: the current taxpayer and the windows are states
// of the library, and a host may release its last object between two operations.
#pragma once

#include "platform/win32_windows.h"

namespace tav {

// Counts as one reason to stay while it lives.
class ModuleLock {
 public:
    ModuleLock();
    ~ModuleLock();
    ModuleLock(const ModuleLock&) = delete;
    ModuleLock& operator=(const ModuleLock&) = delete;
};

// The host's own locks (IClassFactory::LockServer).
void LockModule();
void UnlockModule();

// Whether there are locks or windows. Any thread may ask.
bool ModuleBusy();

// From now on the library stays loaded until the process ends.
void PinModule();

}  // namespace tav
