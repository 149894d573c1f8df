// Makes one chosen platform call fail, or go wrong in another way.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/error.h>

namespace kvdm {

// Counts the calls made through failing wrappers and chooses the one that fails. Several wrappers
// may share a counter, so that a sweep over `fail_at` visits every call of a whole operation.
struct FailureCounter {
  int calls = 0;
  int fail_at = 0;  // The number of the call that fails, counted from 1; 0: none.
  // What the chosen call does instead of failing, before it goes on: throw, or call back.
  std::function<void()> instead = {};
  // The chosen call fails no other way than by giving Nothing for an object, none of several
  // values, and lists of uneven length.
  bool gives_nothing = false;
  // Where the names of the calls go, with the path or name they are about; Nothing for nowhere.
  std::vector<std::string>* record = nullptr;

  // Counts one call; whether it fails. Runs `instead` at the chosen one.
  [[nodiscard]] bool Fails(std::string_view call, std::string_view about = {}) {
    if (record != nullptr) record->push_back(Named(call, about));
    if (++calls != fail_at || gives_nothing) return false;
    if (!instead) return true;
    instead();
    return false;
  }

  // Counts one call. Run-time error 70 when it is the chosen one.
  void Count(std::string_view call, std::string_view about = {}) {
    if (Fails(call, about)) throw RuntimeError(kPermissionDenied, "", "Injected failure");
  }

  // Whether the call counted last is to give Nothing.
  [[nodiscard]] bool GivesNothing() const { return gives_nothing && calls == fail_at; }

 private:
  static std::string Named(std::string_view call, std::string_view about) {
    return std::string(call) + (about.empty() ? "" : " ") + std::string(about);
  }
};

}  // namespace kvdm
