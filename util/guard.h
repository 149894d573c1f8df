// Error policies. The first line of an operation names the policy that decides what becomes of its
// failures:
//
//   // Reported, then the neutral result:
//   return guard::Reported(reporter, "Couldn't delete Analysis", [&] { ... });
//   // Trapped, then the neutral result:
//   return guard::Quiet(log, [&] { ... });
//   // One step may fail, the next goes on:
//   guard::Skipping(log, [&] { ... });
//   // Errors reach the caller, from objects that may throw anything:
//   return guard::Passed([&] { ... });
//
// No guard: errors reach the caller. The neutral result of an operation is the empty value of its
// type: False, "", 0 or Nothing. Guards nest: a report that fails is a failure of the operation
// around it.
//
// Each trapped failure is noted once, where it is trapped, in the log; a null log notes nothing.
#pragma once

#include <exception>
#include <string_view>
#include <type_traits>
#include <utility>

#include <kvdm/platform/error.h>

#include "util/reporter.h"

namespace kvdm::guard {

// Notes the exception that is being handled, after what could not be done because of it:
//
//   Couldn't delete Analysis: Permission denied: D:\Data (70)
//
// Without memory for it nothing is noted.
void NoteFailure(Log* log, std::string_view undone) noexcept;

// Runs `body`; on a failure, whatever was thrown, notes it, runs `handle` and returns the neutral
// result. Needs no memory for a failure itself.
template <class Handler, class Body>
auto Trapped(Log* log, std::string_view undone, Handler&& handle, Body&& body)
    -> std::invoke_result_t<Body> {
  try {
    return std::forward<Body>(body)();
  } catch (...) {
    NoteFailure(log, undone);
    std::forward<Handler>(handle)();
    return std::invoke_result_t<Body>();
  }
}

// As Trapped; hands the error to `handle`.
template <class Handler, class Body>
auto Handled(Log* log, Handler&& handle, Body&& body) {
  return Trapped(
      log, {}, [&] { handle(CurrentError()); }, std::forward<Body>(body));
}

// Lets errors through to the caller; what is no std::exception becomes an automation failure on the
// way, so that callers need to know no other types.
template <class Body>
auto Passed(Body&& body) -> std::invoke_result_t<Body> {
  try {
    return std::forward<Body>(body)();
  } catch (const std::exception&) {
    throw;
  } catch (...) {
    throw CurrentError();
  }
}

// Reports a failure as `message`, and hands over its cause.
template <class Body>
auto Reported(const Reporter& reporter, std::string_view message, Body&& body) {
  return Trapped(
      reporter.log(), message, [&] { reporter.Report(message, std::current_exception()); },
      std::forward<Body>(body));
}

// Traps a failure and shows nothing.
template <class Body>
auto Quiet(Log* log, Body&& body) {
  return Trapped(
      log, {}, [] {}, std::forward<Body>(body));
}

// Traps a failure of one step. True when the step was done.
template <class Step>
bool Skipping(Log* log, Step&& step) {
  return Quiet(log, [&] {
    std::forward<Step>(step)();
    return true;
  });
}

}  // namespace kvdm::guard
