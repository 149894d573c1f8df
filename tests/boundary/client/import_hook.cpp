#include "tests/boundary/client/import_hook.h"

#include <string>
#include <string_view>
#include <utility>

#include <kvdm/platform/error.h>

namespace kvdm::client {
namespace {

// The part of a loaded module at an offset that its headers give.
template <class Part>
Part* At(HMODULE module, ULONGLONG offset) {
  return reinterpret_cast<Part*>(reinterpret_cast<char*>(module) + offset);
}

// Where the loader put the address of an imported function; null when it is not imported by name.
void** PlaceIn(HMODULE module, const IMAGE_IMPORT_DESCRIPTOR& library, std::string_view name) {
  const auto* wanted = At<const IMAGE_THUNK_DATA>(module, library.OriginalFirstThunk);
  auto* place = At<void*>(module, library.FirstThunk);
  for (; wanted->u1.AddressOfData != 0; ++wanted, ++place) {
    if (IMAGE_SNAP_BY_ORDINAL(wanted->u1.Ordinal)) continue;
    const auto* by_name = At<const IMAGE_IMPORT_BY_NAME>(module, wanted->u1.AddressOfData);
    if (name == reinterpret_cast<const char*>(by_name->Name)) return place;
  }
  return nullptr;
}

void** PlaceIn(HMODULE module, const char* library, std::string_view name) {
  const auto* dos = At<const IMAGE_DOS_HEADER>(module, 0);
  const auto* headers = At<const IMAGE_NT_HEADERS>(module, static_cast<ULONGLONG>(dos->e_lfanew));
  const auto& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  const auto* next = At<const IMAGE_IMPORT_DESCRIPTOR>(module, imports.VirtualAddress);
  for (; next->Name != 0; ++next) {
    if (::lstrcmpiA(At<const char>(module, next->Name), library) != 0) continue;
    if (void** place = PlaceIn(module, *next, name)) return place;
  }
  throw RuntimeError(kFileNotFound, {}, std::string(name) + " is not imported");
}

// Import addresses are read-only once they are there.
void* Exchange(void** place, void* value) {
  DWORD protection = 0;
  ::VirtualProtect(place, sizeof *place, PAGE_READWRITE, &protection);
  void* const old = std::exchange(*place, value);
  ::VirtualProtect(place, sizeof *place, protection, &protection);
  return old;
}

}  // namespace

ImportHook::ImportHook(HMODULE module, const char* library, const char* name, void* replacement)
    : place_(PlaceIn(module, library, name)), original_(Exchange(place_, replacement)) {}

ImportHook::~ImportHook() { Exchange(place_, original_); }

}  // namespace kvdm::client
