#include "platform/windows/windows_registry.h"

#include <sddl.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <system_error>
#include <tuple>

#include "platform/system_error.h"
#include "platform/windows/text.h"

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

// A value of any size. `query` fills in a type, a buffer and the buffer's size, which it changes to
// the value's. The value may grow between two calls.
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

namespace {

// The length of "2026-11-15T07:35:30Z".
constexpr std::size_t kTimeLength = 20;

// How long an update waits for those of other processes.
constexpr DWORD kPatience = 10'000;  // milliseconds

// Holds off all updates of the machine's registry while it lives. An abandoned mutex counts as
// taken: each write leaves the registry consistent.
class UpdateLock {
 public:
  UpdateLock() {
    // Everybody may wait for it and let it go.
    constexpr wchar_t kRights[] = L"D:(A;;GA;;;SY)(A;;GA;;;BA)(A;;0x00100001;;;WD)";
    PSECURITY_DESCRIPTOR rights = nullptr;
    if (::ConvertStringSecurityDescriptorToSecurityDescriptorW(kRights, SDDL_REVISION_1, &rights,
                                                               nullptr) == FALSE) {
      ThrowLastError();
    }
    const std::unique_ptr<void, decltype(&::LocalFree)> owned(rights, &::LocalFree);
    SECURITY_ATTRIBUTES security{sizeof security, rights, FALSE};
    mutex_.reset(::CreateMutexExW(&security, L"Global\\Velk.Kelvaro.Registry", 0,
                                  SYNCHRONIZE | MUTEX_MODIFY_STATE));
    if (!mutex_) ThrowLastError();
    const DWORD result = ::WaitForSingleObject(mutex_.get(), kPatience);
    if (result == WAIT_FAILED) ThrowLastError();
    if (result == WAIT_TIMEOUT) ThrowSystemError(ERROR_BUSY);
  }

  UpdateLock(const UpdateLock&) = delete;
  UpdateLock& operator=(const UpdateLock&) = delete;
  ~UpdateLock() { ::ReleaseMutex(mutex_.get()); }

 private:
  struct Closer {
    void operator()(HANDLE handle) const { ::CloseHandle(handle); }
  };

  std::unique_ptr<void, Closer> mutex_;
};

std::string UtcNow() {
  SYSTEMTIME now{};
  ::GetSystemTime(&now);
  std::array<char, 64> buffer{};
  std::snprintf(buffer.data(), buffer.size(), "%04d-%02d-%02dT%02d:%02d:%02dZ", now.wYear,
                now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond);
  return buffer.data();
}

std::string HistoryOf(std::string_view key, std::string_view name) {
  return std::string(key).append("\\History\\").append(name);
}

// The NUL at the end is the registry's, not the text's.
RegistryValue Decoded(StoredValue stored) {
  const auto type = static_cast<RegistryType>(stored.type);
  if (type != RegistryType::kText) return {type, std::move(stored.bytes)};
  if (stored.bytes.ends_with('\0')) stored.bytes.pop_back();
  return {type, FromAnsi(stored.bytes)};
}

std::optional<RegistryValue> ValueIn(const RegistryKey& key, std::string_view name) {
  auto stored = key.ReadAnsi(name);
  if (!stored) return std::nullopt;
  return Decoded(std::move(*stored));
}

// A text with every character, whatever the code page.
StoredValue Stored(std::string_view text) {
  const std::wstring wide = ToUtf16(text);
  return {REG_SZ,
          {reinterpret_cast<const char*>(wide.c_str()), (wide.size() + 1) * sizeof(wchar_t)}};
}

// The names of what was kept, the oldest first: the time, and a number where there would otherwise
// be several of one time.
std::vector<std::string> NamesIn(const RegistryKey& history) {
  std::vector<std::string> names = history.ValueNames();
  std::ranges::sort(names, {}, [](const std::string& name) {
    return std::tuple(name.substr(0, kTimeLength), name.size(), name);
  });
  return names;
}

// The same content is kept once.
void Keep(const RegistryKey& history, const StoredValue& value) {
  for (const std::string& name : history.ValueNames()) {
    if (history.Read(name) == value) history.Delete(name);
  }
  const std::string now = UtcNow();
  int number = 1;
  for (const std::string& name : NamesIn(history)) {
    if (!name.starts_with(now)) continue;
    number = name.size() > kTimeLength ? std::stoi(name.substr(kTimeLength)) + 1 : 2;
  }
  history.Write(number == 1 ? now : now + " " + std::to_string(number), value);
}

void ForgetOldest(const RegistryKey& history) {
  const auto names = NamesIn(history);
  std::size_t bytes = 0;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string& name = names[names.size() - 1 - i];
    bytes += history.Read(name).value_or(StoredValue{}).bytes.size();
    if (i > 0 && (i >= kMostKeptValues || bytes > kMostKeptBytes)) history.Delete(name);
  }
}

// When an update refuses, the fault lies in the stored value.
TextUpdate::Outcome OutcomeOf(const TextUpdate& update,
                              const std::optional<RegistryValue>& stored) {
  try {
    return update.On(stored);
  } catch (const RuntimeError& error) {
    throw std::system_error(ERROR_FILE_TOO_LARGE, std::system_category(), error.what());
  }
}

RegistryState StateOf(const std::error_code& error) {
  switch (error.value()) {
    case ERROR_ACCESS_DENIED:
      return RegistryState::kForbidden;
    case ERROR_FILE_TOO_LARGE:
      return RegistryState::kTooLarge;
    case ERROR_BUSY:
      return RegistryState::kBusy;
    default:
      return RegistryState::kFailing;
  }
}

class WindowsRegistry final : public Registry {
 public:
  explicit WindowsRegistry(std::shared_ptr<Log> log) : log_(std::move(log)) {}

  std::optional<RegistryValue> Read(RegistryRoot root, std::string_view key,
                                    std::string_view name) override {
    std::optional<RegistryValue> value;
    const bool done = Done(key, name, [&] {
      const auto open_key = RegistryKey::Open(root, key);
      if (!open_key) return;
      value = ValueIn(*open_key, name);
      if (RegistryKey::IsReadOnly(root, key)) {
        condition_ = {RegistryState::kReadOnly, "its key can't be written"};
      }
    });
    if (!done) ThrowUnreadable(condition_);
    return value;
  }

  bool WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                 std::string_view text) override {
    return Done(key, name, [&] { RegistryKey::Create(root, key).WriteAnsi(name, ToAnsi(text)); });
  }
  bool Update(RegistryRoot root, std::string_view key, std::string_view name,
              const TextUpdate& update) override {
    return Done(key, name, [&] {
      const UpdateLock lock;
      const auto open_key = RegistryKey::Create(root, key);
      const auto stored = ValueIn(open_key, name);
      const auto outcome = OutcomeOf(update, stored);
      if (stored == RegistryValue{RegistryType::kText, outcome.text}) return;
      if (outcome.keeps_stored || !outcome.kept.empty()) {
        const auto history = RegistryKey::Create(root, HistoryOf(key, name));
        if (outcome.keeps_stored) Keep(history, open_key.Read(name).value());
        for (const std::string& text : outcome.kept) Keep(history, Stored(text));
        ForgetOldest(history);
      }
      open_key.WriteAnsi(name, ToAnsi(outcome.text));
    });
  }

  std::vector<KeptValue> Kept(RegistryRoot root, std::string_view key,
                              std::string_view name) override {
    std::vector<KeptValue> values;
    const bool done = Done(key, name, [&] {
      const auto history = RegistryKey::Open(root, HistoryOf(key, name));
      if (!history) return;
      for (const std::string& entry : NamesIn(*history)) {
        auto stored = history->ReadAnsi(entry);
        if (stored) values.push_back({entry.substr(0, kTimeLength), Decoded(std::move(*stored))});
      }
    });
    if (!done) ThrowUnreadable(condition_);
    return values;
  }

  [[nodiscard]] RegistryCondition Condition() const override { return condition_; }

  // Programs with another code page read what this one writes.
  [[nodiscard]] bool Holds(char32_t character) const override {
    return HasAnsi(character) && HasAnsi(character, MachineCodePage());
  }

 private:
  // Whether `operation` ended without an error, which otherwise is noted.
  template <class Operation>
  bool Done(std::string_view key, std::string_view name, Operation operation) {
    try {
      condition_ = {};
      operation();
      return true;
    } catch (const std::system_error& error) {
      condition_ = {StateOf(error.code()), error.what()};
      log_->Note("The registry refuses " + std::string(key) + ", " + std::string(name) + ": " +
                 error.what());
      return false;
    }
  }

  std::shared_ptr<Log> log_;
  RegistryCondition condition_;
};

}  // namespace

std::unique_ptr<Registry> MakeWindowsRegistry(std::shared_ptr<Log> log) {
  return std::make_unique<WindowsRegistry>(std::move(log));
}

}  // namespace kvdm
