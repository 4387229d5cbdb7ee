#pragma once

namespace onu {

// Makes the programs that change the unit wait for one another: they share the settings files, the
// command shell's script, the uploaded file and the flash. The lock is advisory, on the folder
// "/tmp", which is always there, and held until the process ends, however it ends; the tools that
// it starts do not keep it.

// Waits for the lock, 10 s at most; then, or when there is no such folder, says so on standard
// error. Whoever has it already does not wait.
void takeUnitLock();

// Whether this process has it. What must not be done twice at once has to ask.
bool unitLockHeld();

}  // namespace onu
