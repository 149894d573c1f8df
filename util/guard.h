// The error policies. The first line of an operation names the policy that decides what becomes of
// its failures:
//
//   // Told to the sink, then the neutral result:
//   return guard::Reported(sink, "Couldn't delete Analysis", [&] { ... });
//   // Trapped, then the neutral result:
//   return guard::Quiet([&] { ... });
//   // One step may fail, the next goes on:
//   guard::Skipping([&] { ... });
//
// No guard: errors reach the caller. The neutral result of an operation is the empty value of its
// type: False, "", 0 or Nothing. Guards nest: a report that fails is a failure of the operation
// around it.
#pragma once

#include <exception>
#include <string_view>
#include <type_traits>
#include <utility>

#include "platform/error.h"
#include "util/error_sink.h"

namespace kvdm::guard {

// Runs `body`; on a failure hands the error to `handle` and returns the neutral result.
template <class Handler, class Body>
auto Handled(Handler&& handle, Body&& body) -> std::invoke_result_t<Body> {
  try {
    return std::forward<Body>(body)();
  } catch (const std::exception& error) {
    std::forward<Handler>(handle)(AsRuntimeError(error));
    return std::invoke_result_t<Body>();
  }
}

// Reports a failure as `message`.
template <class Body>
auto Reported(const ErrorSink& sink, std::string_view message, Body&& body) {
  return Handled([&](const RuntimeError&) { sink.Report(message); }, std::forward<Body>(body));
}

// Traps a failure and shows nothing.
template <class Body>
auto Quiet(Body&& body) {
  return Handled([](const RuntimeError&) {}, std::forward<Body>(body));
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
