#include "items/error_sinks.h"

#include <exception>
#include <string>

namespace kvdm {

void LateBoundSink::Report(std::string_view message) const {
  const auto number = target_ ? kMemberNotSupported : kObjectNotSet;
  RuntimeError error(number, "KVDM", std::string(DescriptionOf(number)), std::string(message));
  if (std::current_exception()) std::throw_with_nested(std::move(error));
  throw error;
}

void LateBoundIfBoundSink::Report(std::string_view message) const {
  if (target_) LateBoundSink(target_).Report(message);
}

void DirectSink::Report(std::string_view message) const {
  Required(target_).KVDMHandleError(message);
}

void DirectIfBoundSink::Report(std::string_view message) const {
  if (target_) target_->KVDMHandleError(message);
}

}  // namespace kvdm
