#include "com/module.h"

#include <atomic>

#include "platform/windows/automation.h"

namespace kvdm::com {
namespace {

std::atomic<long> g_locks = 0;

// Any address inside the DLL names it.
HMODULE Module(DWORD flags) {
  HMODULE module = nullptr;
  ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | flags,
                       reinterpret_cast<LPCWSTR>(&g_locks), &module);
  return module;
}

}  // namespace

ModuleLock::ModuleLock() { LockModule(true); }
ModuleLock::~ModuleLock() { LockModule(false); }
bool IsModuleLocked() { return g_locks != 0; }
void LockModule(bool lock) { g_locks += lock ? 1 : -1; }
void PinModule() { Module(GET_MODULE_HANDLE_EX_FLAG_PIN); }

std::wstring ModulePath() {
  const HMODULE module = Module(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT);
  std::wstring path(MAX_PATH, L'\0');
  while (true) {
    const DWORD length = ::GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0) Check(HRESULT_FROM_WIN32(::GetLastError()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

}  // namespace kvdm::com
