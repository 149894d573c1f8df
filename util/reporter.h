// Reporter: how the failures of an object's operations are reported, and where they are noted.
#pragma once

#include <exception>
#include <string_view>

#include <kvdm/platform/log.h>

namespace kvdm {

// Who is told of failures: the data manager.
class ReportTarget {
 public:
  // Shows `message` to the user.
  virtual void KVDMHandleError(std::string_view message) = 0;

  [[nodiscard]] virtual Log* ErrorLog() const = 0;

 protected:
  ~ReportTarget() = default;
};

enum class ReportStyle {
  kShown,         // shown at once; run-time error 91 without a target
  kShownIfBound,  // shown at once; dropped without a target
  // Called by name. The data manager publishes no operation of that name, so every report ends in
  // run-time error 438, and in 91 without a target.
  kByName,
  kByNameIfBound,  // as kByName; dropped without a target
};

struct Reporter {
  ReportStyle style;
  ReportTarget* target;  // may be null

  // Delivers a report. `cause` is the failure that is reported; null when nothing has failed. An
  // error in which the report ends carries the message and, nested, the cause.
  void Report(std::string_view message, const std::exception_ptr& cause = nullptr) const;

  // Null without a target.
  [[nodiscard]] Log* log() const { return target != nullptr ? target->ErrorLog() : nullptr; }
};

}  // namespace kvdm
