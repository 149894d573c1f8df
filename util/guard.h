// The error policies. The first line of an operation names the policy that decides what becomes of
// its failures:
//
//   // Told to the sink, then the neutral result:
//   return guard::Reported(sink, "Couldn't delete Analysis", [&] { ... });
//   // Trapped, then the neutral result:
//   return guard::Quiet([&] { ... });
//   // One step may fail, the next goes on:
//   guard::Skipping([&] { ... });
//   // Errors reach the caller, from objects that may throw anything:
//   return guard::Passed([&] { ... });
//
// No guard: errors reach the caller. The neutral result of an operation is the empty value of its
// type: False, "", 0 or Nothing. Guards nest: a report that fails is a failure of the operation
// around it.
#pragma once

#include <exception>
#include <string_view>
#include <type_traits>
#include <utility>

#include <kvdm/platform/error.h>

#include "util/error_sink.h"

namespace kvdm::guard {

// Runs `body`; on a failure, whatever was thrown, runs `handle` and returns the neutral result.
// Needs no memory for a failure itself.
template <class Handler, class Body>
auto Trapped(Handler&& handle, Body&& body) -> std::invoke_result_t<Body> {
  try {
    return std::forward<Body>(body)();
  } catch (...) {
    std::forward<Handler>(handle)();
    return std::invoke_result_t<Body>();
  }
}

// Runs `body`; on a failure hands the error to `handle` and returns the neutral result.
template <class Handler, class Body>
auto Handled(Handler&& handle, Body&& body) {
  return Trapped([&] { handle(CurrentError()); }, std::forward<Body>(body));
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

// Reports a failure as `message`.
template <class Body>
auto Reported(const ErrorSink& sink, std::string_view message, Body&& body) {
  return Trapped([&] { sink.Report(message); }, std::forward<Body>(body));
}

// Traps a failure and shows nothing.
template <class Body>
auto Quiet(Body&& body) {
  return Trapped([] {}, std::forward<Body>(body));
}

// Traps a failure of one step. True when the step was done.
template <class Step>
bool Skipping(Step&& step) {
  return Quiet([&] {
    std::forward<Step>(step)();
    return true;
  });
}

}  // namespace kvdm::guard
