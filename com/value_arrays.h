// Lists of values as automation passes them: arrays of VARIANTs, which scripts can read too.
#pragma once

#include <string>
#include <vector>

#include <kvdm/platform/value.h>

#include "platform/windows/com_headers.h"

namespace kvdm::com {

// Overwrites `out`, without clearing it, with an array counted from 0; with Empty when there are no
// values.
void PutArray(const std::vector<Value>& values, VARIANT* out);

// The values of a one-dimensional array of VARIANTs or of texts, of one value, or of Empty, which
// has none. Run-time error 13 for others.
[[nodiscard]] std::vector<Value> FromArray(const VARIANT& array);

}  // namespace kvdm::com
