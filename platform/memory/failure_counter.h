// Makes one chosen platform call fail.
#pragma once

#include "platform/error.h"

namespace kvdm {

// Counts the calls made through failing wrappers and chooses the one that fails. Several wrappers
// may share a counter, so that a sweep over `fail_at` visits every call of a whole operation.
struct FailureCounter {
  int calls = 0;
  int fail_at = 0;  // The number of the call that fails, counted from 1; 0: none.

  // Counts one call; whether it is the chosen one.
  [[nodiscard]] bool Fails() { return ++calls == fail_at; }

  // Counts one call. Run-time error 70 when it is the chosen one.
  void Count() {
    if (Fails()) throw RuntimeError(kPermissionDenied, "", "Injected failure");
  }
};

}  // namespace kvdm
