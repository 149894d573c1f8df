#include "host/windows/com_server.h"

#include <fmt/format.h>
#include <objbase.h>
#include <olectl.h>
#include <windows.h>

#include <cstring>
#include <memory>
#include <system_error>
#include <vector>

#include <kvdm/datamanager/component.h>

#include "host/os.h"
#include "platform/windows/text.h"
#include "safety/result.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

constexpr int kOwnWordSize = 8 * sizeof(void*);

struct LibraryCloser {
  using pointer = HMODULE;
  void operator()(HMODULE library) const { FreeLibrary(library); }
};
using Library = std::unique_ptr<HMODULE, LibraryCloser>;

Library Load(const fs::path& file) {
  if (!os::Exists(file)) {
    throw Failure(ExitCode::kNotFound,
                  fmt::format("There is no DLL {}. Name it with --dll.", os::ToText(file)));
  }
  const auto size = WordSize(file);
  if (!size) {
    throw Failure(ExitCode::kUnreadable, fmt::format("{} is no DLL.", os::ToText(file)));
  }
  if (size != kOwnWordSize) {
    throw Failure(ExitCode::kUnreadable,
                  fmt::format("{} is for {}-bit programs, and this kvdm is a {}-bit one.",
                              os::ToText(file), *size, kOwnWordSize));
  }
  Library library(
      LoadLibraryExW(os::Canonical(file).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
  if (library) return library;
  const std::error_code why(static_cast<int>(GetLastError()), std::system_category());
  throw Failure(ExitCode::kRefused,
                fmt::format("{} can't be loaded: {}.", os::ToText(file), why.message()));
}

template <class Function>
Function* EntryPoint(const Library& library, const fs::path& file, const char* name) {
  const auto found = GetProcAddress(library.get(), name);
  if (found == nullptr) {
    throw Failure(ExitCode::kUnreadable,
                  fmt::format("{} can't be registered: it has no {}.", os::ToText(file), name));
  }
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(found));
}

void Require(HRESULT result, ComScope scope) {
  if (SUCCEEDED(result)) return;
  if (scope == ComScope::kMachine && result == E_ACCESSDENIED) {
    throw Failure(ExitCode::kRefused,
                  "Only an administrator may change this for the whole machine: start kvdm as one, "
                  "or add --user to change it for yourself.");
  }
  throw Failure(ExitCode::kRefused, fmt::format("The DLL refused with the result {:#010x}.",
                                                static_cast<std::uint32_t>(result)));
}

void Install(const fs::path& file, ComScope scope, bool install) {
  const Library library = Load(file);
  if (scope == ComScope::kUser) {
    const auto entry =
        EntryPoint<HRESULT STDAPICALLTYPE(BOOL, const wchar_t*)>(library, file, "DllInstall");
    Require(entry(install ? TRUE : FALSE, L"user"), scope);
  } else {
    const char* name = install ? "DllRegisterServer" : "DllUnregisterServer";
    Require(EntryPoint<HRESULT STDAPICALLTYPE()>(library, file, name)(), scope);
  }
}

// The text that a key of the registry has as its own value.
std::optional<std::wstring> KeyText(HKEY root, const std::wstring& key) {
  DWORD bytes = 0;
  if (RegGetValueW(root, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, nullptr, &bytes) !=
      ERROR_SUCCESS) {
    return std::nullopt;
  }
  std::wstring text(bytes / sizeof(wchar_t), L'\0');
  if (RegGetValueW(root, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text.data(), &bytes) !=
      ERROR_SUCCESS) {
    return std::nullopt;
  }
  return text.substr(0, text.find(L'\0'));
}

// A header at `offset` of a file's bytes; nothing when they end before.
template <class Header>
std::optional<Header> HeaderAt(const std::string& bytes, std::size_t offset) {
  if (offset > bytes.size() || bytes.size() - offset < sizeof(Header)) return std::nullopt;
  Header header;
  std::memcpy(&header, bytes.data() + offset, sizeof header);
  return header;
}

}  // namespace

fs::path OwnComServer() {
  std::wstring program(MAX_PATH, L'\0');
  for (;;) {
    const DWORD size =
        GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
    if (size < program.size()) {
      program.resize(size);
      return fs::path(program).parent_path() / L"KVDM.dll";
    }
    program.resize(2 * program.size());
  }
}

// Read as data, without the system's VERSION.dll: a file of that name beside this program, such as
// in a folder of downloads, would be loaded instead.
std::optional<std::string> FileVersion(const fs::path& file) {
  constexpr DWORD kAsData = LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE;
  const Library library(LoadLibraryExW(file.c_str(), nullptr, kAsData));
  const HRSRC found =
      library ? FindResourceW(library.get(), MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION)
              : nullptr;
  if (found == nullptr) return std::nullopt;
  const std::string resource(
      static_cast<const char*>(LockResource(LoadResource(library.get(), found))),
      SizeofResource(library.get(), found));
  // The numbers begin with a signature, behind texts of different lengths.
  constexpr DWORD kSignature = VS_FFI_SIGNATURE;
  const std::size_t start =
      resource.find({reinterpret_cast<const char*>(&kSignature), sizeof kSignature});
  const auto info = HeaderAt<VS_FIXEDFILEINFO>(resource, start);
  if (!info) return std::nullopt;
  return fmt::format("{}.{}.{}.{}", HIWORD(info->dwFileVersionMS), LOWORD(info->dwFileVersionMS),
                     HIWORD(info->dwFileVersionLS), LOWORD(info->dwFileVersionLS));
}

std::optional<int> WordSize(const fs::path& file) {
  const std::string bytes = os::ReadBytes(file);
  const auto start = HeaderAt<IMAGE_DOS_HEADER>(bytes, 0);
  if (!start || start->e_magic != IMAGE_DOS_SIGNATURE || start->e_lfanew < 0) return std::nullopt;
  const auto offset = static_cast<std::size_t>(start->e_lfanew);
  const auto signature = HeaderAt<DWORD>(bytes, offset);
  const auto header = HeaderAt<IMAGE_FILE_HEADER>(bytes, offset + sizeof(DWORD));
  if (signature != IMAGE_NT_SIGNATURE || !header) return std::nullopt;
  if ((header->Characteristics & IMAGE_FILE_DLL) == 0) return std::nullopt;
  if (header->Machine == IMAGE_FILE_MACHINE_AMD64) return 64;
  if (header->Machine == IMAGE_FILE_MACHINE_I386) return 32;
  return std::nullopt;
}

std::optional<std::string> RegisteredComServer(ComScope scope) {
  const HKEY root = scope == ComScope::kMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
  const std::wstring classes = LR"(Software\Classes\)";
  const auto id = KeyText(root, classes + ToUtf16(kDataManagerClass) + LR"(\CLSID)");
  if (!id) return std::nullopt;
  const auto server = KeyText(root, classes + LR"(CLSID\)" + *id + LR"(\InprocServer32)");
  return server ? std::optional(ToUtf8(*server)) : std::nullopt;
}

void RegisterComServer(const fs::path& file, ComScope scope) { Install(file, scope, true); }
void UnregisterComServer(const fs::path& file, ComScope scope) { Install(file, scope, false); }

}  // namespace kvdm
