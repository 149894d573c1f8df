// Where the component notes what callers do not see.
#pragma once

#include <string_view>

#include <kvdm/export.h>

namespace kvdm {

class KVDM_EXPORT Log {
 public:
  virtual ~Log() = default;

  // Notes one line of UTF-8 text. Never fails.
  virtual void Note(std::string_view line) = 0;
};

}  // namespace kvdm
