// What the registry of Windows keeps, byte by byte; the rest is in the contract. Runs in several
// code pages.
#include "platform/windows/windows_registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <thread>

#include "platform/memory/memory_platform.h"
#include "platform/windows/text.h"
#include "tests/platform/windows/registry_sandbox.h"
#include "tests/replacing_update.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using namespace std::string_view_literals;

constexpr auto kMachine = RegistryRoot::kLocalMachine;
constexpr char kKey[] = "Software\\Velk\\Kelvaro";

constexpr unsigned kJapanese = 932;

struct RawValue {
  DWORD type = 0;
  std::string bytes;
};

// What the registry answers itself.
RawValue Raw(const char* name) {
  HKEY key = nullptr;
  EXPECT_EQ(::RegOpenKeyExA(HKEY_LOCAL_MACHINE, kKey, 0, KEY_READ, &key), ERROR_SUCCESS);
  RawValue value{0, std::string(1000, '\0')};
  auto size = static_cast<DWORD>(value.bytes.size());
  EXPECT_EQ(::RegQueryValueExA(key, name, nullptr, &value.type,
                               reinterpret_cast<BYTE*>(value.bytes.data()), &size),
            ERROR_SUCCESS);
  ::RegCloseKey(key);
  value.bytes.resize(size);
  return value;
}

void PutRaw(const char* name, DWORD type, std::string_view bytes) {
  HKEY key = nullptr;
  EXPECT_EQ(::RegCreateKeyA(HKEY_LOCAL_MACHINE, kKey, &key), ERROR_SUCCESS);
  EXPECT_EQ(::RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                             static_cast<DWORD>(bytes.size())),
            ERROR_SUCCESS);
  ::RegCloseKey(key);
}

class WindowsRegistryTest : public testing::Test {
 protected:
  // What is read after `text` was written.
  std::string RoundTrip(std::string_view text) {
    EXPECT_TRUE(registry_.WriteText(kMachine, kKey, "Alias", text));
    return registry_.Read(kMachine, kKey, "Alias").value_or(RegistryValue{}).data;
  }

  void WriteAndKeep(std::string_view text) {
    EXPECT_TRUE(registry_.WriteText(kMachine, kKey, "Alias", text));
    EXPECT_TRUE(registry_.Update(kMachine, kKey, "Alias", Replacing("later")));
  }

  std::vector<std::string> KeptTexts() {
    std::vector<std::string> texts;
    for (const auto& kept : registry_.Kept(kMachine, kKey, "Alias")) {
      texts.push_back(kept.value.data);
    }
    return texts;
  }

  RegistrySandbox sandbox_;
  std::shared_ptr<RecordingLog> log_ = std::make_shared<RecordingLog>();
  std::unique_ptr<Registry> made_ = MakeWindowsRegistry(log_);
  Registry& registry_ = *made_;
};

TEST_F(WindowsRegistryTest, StoresATextOfTheCodePageAndANul) {
  ASSERT_TRUE(registry_.WriteText(kMachine, kKey, "Alias", "Shops"));
  const RawValue value = Raw("Alias");
  EXPECT_EQ(value.type, REG_SZ);
  EXPECT_EQ(value.bytes, "Shops\0"sv);
}

TEST_F(WindowsRegistryTest, StoresEveryByteOfLettersThatTakeSeveral) {
  const bool is_japanese = ::GetACP() == kJapanese;
  const std::string text =
      is_japanese ? "<A N=\"\u65E5\u672C\u8A9E\"/>" : "<A N=\"\u00FC\u00E9\"/>";
  const auto bytes =
      is_japanese ? "<A N=\"\x93\xFA\x96\x7B\x8C\xEA\"/>\0"sv : "<A N=\"\xFC\xE9\"/>\0"sv;
  EXPECT_EQ(RoundTrip(text), text);
  EXPECT_EQ(Raw("Alias").bytes, bytes);
}

TEST_F(WindowsRegistryTest, WhatTheCodePageLacksIsStoredReplaced) {
  const bool is_japanese = ::GetACP() == kJapanese;
  EXPECT_EQ(RoundTrip("\u00FC\u65E5\U0001F600"), is_japanese ? "?\u65E5??" : "\u00FC???");
  EXPECT_EQ(registry_.Holds(0x65E5), is_japanese);
  EXPECT_EQ(registry_.Holds(0xFC), !is_japanese);
}

TEST_F(WindowsRegistryTest, TheEmptyTextHasNoBytes) {
  EXPECT_EQ(RoundTrip(""), "");
  EXPECT_EQ(Raw("Alias").bytes, "");
}

TEST_F(WindowsRegistryTest, OnlyTheNulOfTheRegistryIsLeftOut) {
  PutRaw("Counted", REG_SZ, "one\0two\0\0"sv);
  PutRaw("Cut", REG_SZ, "onetwo"sv.substr(0, 3));
  EXPECT_EQ(registry_.Read(kMachine, kKey, "Counted")->data, "one\0two\0"sv);
  EXPECT_EQ(registry_.Read(kMachine, kKey, "Cut")->data, "one");
}

TEST_F(WindowsRegistryTest, OtherTypesAreReadAsTheyAre) {
  PutRaw("Number", REG_DWORD, "\x05\0\0\0"sv);
  PutRaw("Binary", REG_BINARY, "\xFF\0"sv);
  PutRaw("Expand", REG_EXPAND_SZ, "%TEMP%\0"sv);
  EXPECT_EQ(registry_.Read(kMachine, kKey, "Number"),
            (RegistryValue{RegistryType::kNumber, std::string("\x05\0\0\0", 4)}));
  EXPECT_EQ(registry_.Read(kMachine, kKey, "Binary"),
            (RegistryValue{RegistryType::kBinary, std::string("\xFF\0", 2)}));
  EXPECT_EQ(registry_.Read(kMachine, kKey, "Expand")->type, RegistryType::kExpandText);
}

TEST_F(WindowsRegistryTest, WhatTheRegistryRefusesIsNoted) {
  const std::string key(300, 'k');  // Longer than keys may be.
  EXPECT_FALSE(registry_.WriteText(kMachine, key, "Alias", "Shops"));
  EXPECT_THAT(log_->Lines(), ElementsAre(HasSubstr(key + ", Alias")));
}

TEST_F(WindowsRegistryTest, ClosesItsKeys) {
  WriteAndKeep("Shops");
  DWORD before = 0;
  DWORD after = 0;
  ASSERT_TRUE(::GetProcessHandleCount(::GetCurrentProcess(), &before));
  for (int i = 0; i < 100; ++i) {
    WriteAndKeep("Shops");
    EXPECT_THAT(KeptTexts(), SizeIs(1));
    EXPECT_EQ(registry_.Read(kMachine, kKey, "Missing"), std::nullopt);
  }
  ASSERT_TRUE(::GetProcessHandleCount(::GetCurrentProcess(), &after));
  EXPECT_EQ(after, before);
}

TEST_F(WindowsRegistryTest, AnUpdateThatNobodyLetsGoOfIsRefusedAndTheNextOneGoesThrough) {
  const HANDLE lock = ::CreateMutexExW(nullptr, L"Global\\Velk.Kelvaro.Registry", 0, SYNCHRONIZE);
  ASSERT_NE(lock, nullptr);
  ASSERT_EQ(::WaitForSingleObject(lock, 0), WAIT_OBJECT_0);
  bool done = true;
  std::thread([&] { done = registry_.Update(kMachine, kKey, "Alias", Replacing("text")); }).join();
  EXPECT_FALSE(done);
  EXPECT_EQ(registry_.Condition().state, RegistryState::kBusy);
  ::ReleaseMutex(lock);
  ::CloseHandle(lock);
  EXPECT_TRUE(registry_.Update(kMachine, kKey, "Alias", Replacing("text")));
}

TEST_F(WindowsRegistryTest, AnUpdateThatWasAbandonedHoldsNobodyUp) {
  HANDLE lock = nullptr;
  std::thread([&] {
    lock = ::CreateMutexExW(nullptr, L"Global\\Velk.Kelvaro.Registry", 0, SYNCHRONIZE);
    ::WaitForSingleObject(lock, INFINITE);
  }).join();
  EXPECT_TRUE(registry_.Update(kMachine, kKey, "Alias", Replacing("text")));
  ::CloseHandle(lock);
}

// --- What is kept

TEST_F(WindowsRegistryTest, EachContentIsKeptOnceTheOldestFirst) {
  for (const auto* text : {"zero", "one", "zero", "two", "one"}) WriteAndKeep(text);
  EXPECT_THAT(KeptTexts(), ElementsAre("zero", "two", "one"));
}

TEST_F(WindowsRegistryTest, ManyContentsOfOneSecondKeepTheirOrder) {
  std::vector<std::string> texts;
  for (int i = 0; i < 15; ++i) {
    texts.push_back("text " + std::to_string(i));
    WriteAndKeep(texts.back());
  }
  EXPECT_EQ(KeptTexts(), texts);
}

TEST_F(WindowsRegistryTest, KeptValuesHaveTheirTime) {
  WriteAndKeep("one");
  WriteAndKeep("two");
  const std::regex time("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z");
  for (const auto& copy : registry_.Kept(kMachine, "SOFTWARE\\velk\\KELVARO", "ALIAS")) {
    EXPECT_TRUE(std::regex_match(copy.when, time)) << copy.when;
  }
}

TEST_F(WindowsRegistryTest, WhatIsKeptIsBounded) {
  Replacing update("new");
  for (std::size_t i = 0; i < kMostKeptValues + 2; ++i) update.kept.push_back(std::to_string(i));
  ASSERT_TRUE(registry_.Update(kMachine, kKey, "Alias", update));
  EXPECT_THAT(KeptTexts(), SizeIs(kMostKeptValues));
  EXPECT_EQ(KeptTexts().front(), "2");
}

TEST_F(WindowsRegistryTest, ValuesOfAnyTypeAreKept) {
  PutRaw("Alias", REG_DWORD, "\x05\0\0\0"sv);
  ASSERT_TRUE(registry_.Update(kMachine, kKey, "Alias", Replacing("text")));
  const auto preserved = registry_.Kept(kMachine, kKey, "Alias");
  ASSERT_THAT(preserved, SizeIs(1));
  EXPECT_EQ(preserved[0].value.type, RegistryType::kNumber);
}

TEST_F(WindowsRegistryTest, KeptTextsAreNotReplaced) {
  HKEY key = nullptr;
  ASSERT_EQ(::RegCreateKeyA(HKEY_LOCAL_MACHINE, kKey, &key), ERROR_SUCCESS);
  constexpr wchar_t kText[] = L"\u0416";
  ::RegSetValueExW(key, L"Alias", 0, REG_SZ, reinterpret_cast<const BYTE*>(kText), sizeof(kText));
  ASSERT_TRUE(registry_.Update(kMachine, kKey, "Alias", Replacing("text")));
  ::RegCloseKey(key);

  wchar_t name[100];
  wchar_t kept[10];
  DWORD name_length = 100;
  DWORD size = sizeof(kept);
  const std::string history = std::string(kKey) + "\\History\\Alias";
  ASSERT_EQ(::RegOpenKeyExA(HKEY_LOCAL_MACHINE, history.c_str(), 0, KEY_READ, &key), ERROR_SUCCESS);
  EXPECT_EQ(::RegEnumValueW(key, 0, name, &name_length, nullptr, nullptr,
                            reinterpret_cast<BYTE*>(kept), &size),
            ERROR_SUCCESS);
  EXPECT_STREQ(kept, kText);
  ::RegCloseKey(key);
}

}  // namespace
}  // namespace kvdm
