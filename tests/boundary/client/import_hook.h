// Functions put in place of those that a module imports.
#pragma once

#include <windows.h>

namespace kvdm::client {

// As long as it lives, `module` calls `replacement` instead of the function `name`, which it
// imports from `library`. Calls of other modules are not changed.
class ImportHook {
 public:
  template <class Function>
  ImportHook(HMODULE module, const char* library, const char* name, Function* replacement)
      : ImportHook(module, library, name, reinterpret_cast<void*>(replacement)) {}
  // Run-time error 53 when the module does not import the function.
  ImportHook(HMODULE module, const char* library, const char* name, void* replacement);
  ImportHook(const ImportHook&) = delete;
  ImportHook& operator=(const ImportHook&) = delete;
  ~ImportHook();

 private:
  void** place_;
  void* original_;
};

}  // namespace kvdm::client
