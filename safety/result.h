// Result of an operation of a host: rows of named fields, or the failure that ended it.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace kvdm {

// Kinds of failures; `kvdm` ends with them as its exit status.
enum class ExitCode : int {
  kDone = 0,
  kRefused = 1,       // the component, or the system around it, said no
  kUsage = 2,         // the command line can't be understood
  kNotFound = 3,      // no such project, item or file
  kConflict = 4,      // the name exists, or means several items
  kUnsafe = 5,        // refused as it may do harm: what allows it is named
  kFindings = 6,      // a check found something
  kBusy = 7,          // locked by another, or changed since it was read
  kRuntimeError = 8,  // an operation of the component ended in a run-time error
  kUnreadable = 9,    // an input file can't be read or understood
};

// Text, a whole number, a yes or no, or nothing.
using Field = std::variant<std::monostate, std::string, std::int64_t, bool>;

// Flat named fields in a fixed order. Names are in snake_case: they are the keys of the JSON
// output, and the headings for people.
using Record = std::vector<std::pair<std::string, Field>>;

// Ends an operation. `what()` is one or two sentences for people: what is wrong and what to do. The
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
