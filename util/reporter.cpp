#include "util/reporter.h"

#include <string>

#include <kvdm/platform/error.h>

namespace kvdm {
namespace {

bool NeedsTarget(ReportStyle style) {
  return style == ReportStyle::kShown || style == ReportStyle::kByName;
}

[[noreturn]] void Fail(std::int32_t number, std::string_view message,
                       const std::exception_ptr& cause) {
  const RuntimeError error(number, "KVDM", std::string(DescriptionOf(number)),
                           std::string(message));
  if (!cause) throw error;
  try {
    std::rethrow_exception(cause);
  } catch (...) {
    std::throw_with_nested(error);
  }
}

}  // namespace

void Reporter::Report(std::string_view message, const std::exception_ptr& cause) const {
  if (target == nullptr) {
    if (NeedsTarget(style)) Fail(kObjectNotSet, message, cause);
    return;
  }
  if (style == ReportStyle::kByName || style == ReportStyle::kByNameIfBound) {
    Fail(kMemberNotSupported, message, cause);
  }
  target->KVDMHandleError(message);
}

}  // namespace kvdm
