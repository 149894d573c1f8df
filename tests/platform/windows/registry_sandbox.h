// A registry of a test's own.
#pragma once

#include <windows.h>

#include <stdexcept>

namespace kvdm {

// While it lives, this process has two empty keys in place of the machine's and the user's roots.
class RegistrySandbox {
 public:
  RegistrySandbox() {
    ::RegDeleteTreeW(HKEY_CURRENT_USER, kPlace);
    Require(::RegCreateKeyW(HKEY_CURRENT_USER, kPlace, &place_));
    Redirect(HKEY_LOCAL_MACHINE, L"Machine");
    Redirect(HKEY_CURRENT_USER, L"User");
  }
  RegistrySandbox(const RegistrySandbox&) = delete;
  RegistrySandbox& operator=(const RegistrySandbox&) = delete;
  ~RegistrySandbox() {
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    ::RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    ::RegCloseKey(place_);
    ::RegDeleteTreeW(HKEY_CURRENT_USER, kPlace);
  }

 private:
  static constexpr const wchar_t* kPlace = L"Software\\kvdm-tests";

  static void Require(LSTATUS status) {
    if (status != ERROR_SUCCESS) throw std::runtime_error("no registry for the test");
  }

  void Redirect(HKEY root, const wchar_t* name) const {
    HKEY key = nullptr;
    Require(::RegCreateKeyW(place_, name, &key));
    const LSTATUS status = ::RegOverridePredefKey(root, key);
    ::RegCloseKey(key);
    Require(status);
  }

  HKEY place_ = nullptr;
};

}  // namespace kvdm
