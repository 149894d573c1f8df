// Why a command did not do its work.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/exit_codes.h"
#include "host/record.h"

namespace kvdm {

// Ends a command. `what()` is one or two sentences for people: what is wrong and what to do. The
// candidates are what an ambiguous name may mean.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& sentence, std::vector<Record> candidates = {})
      : std::runtime_error(sentence), code_(code), candidates_(std::move(candidates)) {}

  [[nodiscard]] ExitCode code() const { return code_; }
  [[nodiscard]] const std::vector<Record>& candidates() const { return candidates_; }

 private:
  ExitCode code_;
  std::vector<Record> candidates_;
};

}  // namespace kvdm
