// A log that a debugger shows.
#pragma once

#include <kvdm/platform/log.h>

namespace kvdm {

class DebuggerLog final : public Log {
 public:
  void Note(std::string_view line) override;
};

}  // namespace kvdm
