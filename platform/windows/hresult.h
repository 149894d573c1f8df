// Run-time errors and the result codes of COM calls.
#pragma once

#include <windows.h>

#include <string>

#include <kvdm/platform/error.h>

namespace kvdm {

// The run-time error that a failed call means. Description and source are those that the callee
// left for the calling thread, which are taken away by this; else the number's own and `source`.
[[nodiscard]] RuntimeError ErrorOf(HRESULT result, std::string source = {});

// The result code that gives a caller the error's number. Always a failure.
[[nodiscard]] HRESULT ResultOf(const RuntimeError& error);

// Throws what ErrorOf gives when `result` is a failure.
void Check(HRESULT result);

}  // namespace kvdm
