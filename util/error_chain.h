// What lies behind an error, for logs and for people who debug.
#pragma once

#include <exception>
#include <vector>

#include <kvdm/platform/error.h>

namespace kvdm {

// `error` and the failures nested in it, outermost first.
std::vector<RuntimeError> ErrorChain(const std::exception& error);

}  // namespace kvdm
