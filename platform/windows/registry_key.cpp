#include "platform/windows/registry_key.h"

#include "platform/system_error.h"
#include "platform/windows/ansi.h"
#include "platform/windows/utf16.h"

namespace kvdm {
namespace {

HKEY HandleOf(RegistryRoot root) {
  return root == RegistryRoot::kLocalMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

bool IsMissing(LSTATUS status) {
  return status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND;
}

void Require(LSTATUS status) {
  if (status != ERROR_SUCCESS) ThrowSystemError(static_cast<DWORD>(status));
}

// What `query` fills in: it takes a type, a buffer and the buffer's size, which it changes to the
// value's. The value may grow between two calls.
template <class Query>
std::optional<StoredValue> Queried(const Query& query) {
  StoredValue value;
  DWORD size = 0;
  LSTATUS status = query(&value.type, nullptr, &size);
  while (status == ERROR_SUCCESS || status == ERROR_MORE_DATA) {
    value.bytes.resize(size);
    status = query(&value.type, reinterpret_cast<BYTE*>(value.bytes.data()), &size);
    if (status != ERROR_SUCCESS) continue;
    value.bytes.resize(size);
    return value;
  }
  if (IsMissing(status)) return std::nullopt;
  ThrowSystemError(static_cast<DWORD>(status));
}

const BYTE* BytesOf(const std::string& data) { return reinterpret_cast<const BYTE*>(data.data()); }

}  // namespace

std::optional<RegistryKey> RegistryKey::Open(RegistryRoot root, std::string_view path) {
  HKEY key = nullptr;
  const LSTATUS status = ::RegOpenKeyExA(HandleOf(root), ToAnsi(path).c_str(), 0, KEY_READ, &key);
  if (IsMissing(status)) return std::nullopt;
  Require(status);
  return RegistryKey(key);
}

bool RegistryKey::IsReadOnly(RegistryRoot root, std::string_view path) {
  HKEY key = nullptr;
  const LSTATUS status =
      ::RegOpenKeyExA(HandleOf(root), ToAnsi(path).c_str(), 0, KEY_SET_VALUE, &key);
  if (status == ERROR_SUCCESS) ::RegCloseKey(key);
  return status == ERROR_ACCESS_DENIED;
}

RegistryKey RegistryKey::Create(RegistryRoot root, std::string_view path) {
  HKEY key = nullptr;
  Require(::RegCreateKeyExA(HandleOf(root), ToAnsi(path).c_str(), 0, nullptr,
                            REG_OPTION_NON_VOLATILE, KEY_READ | KEY_WRITE, nullptr, &key, nullptr));
  return RegistryKey(key);
}

RegistryKey::~RegistryKey() {
  if (key_ != nullptr) ::RegCloseKey(key_);
}

std::optional<StoredValue> RegistryKey::ReadAnsi(std::string_view name) const {
  const std::string ansi_name = ToAnsi(name);
  return Queried([&](DWORD* type, BYTE* buffer, DWORD* size) {
    return ::RegQueryValueExA(key_, ansi_name.c_str(), nullptr, type, buffer, size);
  });
}

void RegistryKey::WriteAnsi(std::string_view name, const std::string& text) const {
  Require(::RegSetValueExA(key_, ToAnsi(name).c_str(), 0, REG_SZ, BytesOf(text),
                           static_cast<DWORD>(text.size())));
}

std::optional<StoredValue> RegistryKey::Read(std::string_view name) const {
  const std::wstring wide_name = ToUtf16(name);
  return Queried([&](DWORD* type, BYTE* buffer, DWORD* size) {
    return ::RegQueryValueExW(key_, wide_name.c_str(), nullptr, type, buffer, size);
  });
}

void RegistryKey::Write(std::string_view name, const StoredValue& value) const {
  Require(::RegSetValueExW(key_, ToUtf16(name).c_str(), 0, value.type, BytesOf(value.bytes),
                           static_cast<DWORD>(value.bytes.size())));
}

void RegistryKey::Delete(std::string_view name) const {
  Require(::RegDeleteValueW(key_, ToUtf16(name).c_str()));
}

std::vector<std::string> RegistryKey::ValueNames() const {
  constexpr DWORD kLongestName = 16384;
  std::vector<std::string> names;
  std::wstring buffer(kLongestName, L'\0');
  while (true) {
    DWORD length = kLongestName;
    const LSTATUS status = ::RegEnumValueW(key_, static_cast<DWORD>(names.size()), buffer.data(),
                                           &length, nullptr, nullptr, nullptr, nullptr);
    if (status != ERROR_SUCCESS) return names;
    names.push_back(ToUtf8({buffer.data(), length}));
  }
}

}  // namespace kvdm
