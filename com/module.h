// The DLL as its process has it.
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

// Whether anything keeps the DLL from being unloaded.
[[nodiscard]] bool IsModuleLocked();

// What IClassFactory::LockServer adds and takes.
void LockModule(bool lock);

// The full path of the DLL's file.
[[nodiscard]] std::wstring ModulePath();

}  // namespace kvdm::com
