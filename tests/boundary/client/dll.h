// The component's DLL in this process: KVDM.dll of the program's own folder. It is not registered,
// and stays loaded.
//
// A program with this library has its objects behind the component registry,
// datamanager/component.h, instead of those of the component's own code.
#pragma once

#include <windows.h>

namespace kvdm::client {

[[nodiscard]] HMODULE Dll();

// Whether the DLL still has an object that somebody holds.
[[nodiscard]] bool IsDllInUse();

// COM for the calling thread.
class Apartment {
 public:
  Apartment();
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
  ~Apartment();
};

}  // namespace kvdm::client
