// The module: what keeps the DLL loaded, its path, and its registration.
#pragma once

#include <windows.h>

#include <string>

namespace kvdm::com {

// Keeps the DLL from being unloaded for as long as it lives. Every object that clients hold has
// one.
class ModuleLock {
 public:
  ModuleLock();
  ~ModuleLock();
  ModuleLock(const ModuleLock&) = delete;
  ModuleLock& operator=(const ModuleLock&) = delete;
};

[[nodiscard]] bool IsModuleLocked();

// Adds or takes a lock, as IClassFactory::LockServer does.
void LockModule(bool lock);

// Keeps the DLL in the program until its end, whatever clients do. A DLL that has thrown errors
// can't be unloaded without loss: its copy of the compiler's run-time library keeps memory and an
// index of thread-local storage, of which a program has few, for good.
void PinModule();

[[nodiscard]] std::wstring ModulePath();

// The entries by which clients find the component: classes by identifier and by name, and the type
// library with its interfaces.

enum class Scope { kMachine, kUser };

// Writes all entries; those of an earlier version are replaced. Run-time error when one can't be
// written, such as 70 for want of rights.
void Register(Scope scope);

// Removes all entries, also of a registration that was interrupted. Run-time error when one that is
// there can't be removed.
void Unregister(Scope scope);

}  // namespace kvdm::com
