// The one exception type of the component, and the error numbers its clients know.
#pragma once

#include <cstdint>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/export.h>

namespace kvdm {

// Run-time error numbers as clients compare them. Numbers without a classic meaning are the
// negative code of the service that failed.
enum ErrorNumber : std::int32_t {
  kInvalidCall = 5,
  kOverflow = 6,
  kOutOfMemory = 7,
  kSubscriptOutOfRange = 9,
  kTypeMismatch = 13,
  kBadFileName = 52,
  kFileNotFound = 53,
  kFileExists = 58,
  kInputPastEnd = 62,
  kDeviceUnavailable = 68,
  kPermissionDenied = 70,
  kPathFileAccess = 75,
  kPathNotFound = 76,
  kObjectNotSet = 91,
  kInvalidUseOfNull = 94,
  kCollectionMissing = 333,
  kCannotCreateObject = 429,
  kInterfaceNotSupported = 430,
  kMemberNotSupported = 438,
  kActionNotSupported = 445,
  kWrongArgumentCount = 450,
  kAutomationFailure = -2147467259,
};

// A run-time error. `what()` is the description that people read.
//
// An error that replaces a report which could not be delivered carries that report's text in
// `unsent_message`, and the failure that was to be reported is nested in it
// (`std::rethrow_if_nested`), so that logs can show both.
class KVDM_EXPORT RuntimeError : public std::runtime_error {
 public:
  // An error with the classic description of its number.
  explicit RuntimeError(std::int32_t number, std::string source = {});
  RuntimeError(std::int32_t number, std::string source, const std::string& description,
               std::string unsent_message = {});

  [[nodiscard]] std::int32_t number() const { return number_; }
  [[nodiscard]] const std::string& source() const { return source_; }
  [[nodiscard]] const std::string& unsent_message() const { return unsent_message_; }

 private:
  std::int32_t number_;
  std::string source_;
  std::string unsent_message_;
};

// The classic description of an error number; "Automation error" for one without.
KVDM_EXPORT std::string_view DescriptionOf(std::int32_t number);

// The number and description of any exception: a RuntimeError's own, 7 for exhausted memory, else
// an automation failure.
KVDM_EXPORT RuntimeError AsRuntimeError(const std::exception& error);

// The exception that is being handled, in the same way. One that is no std::exception, as a foreign
// object may throw, is an automation failure.
KVDM_EXPORT RuntimeError CurrentError();

// `error` and the failures nested in it, outermost first.
KVDM_EXPORT std::vector<RuntimeError> ErrorChain(const std::exception& error);

// The object behind `pointer`; run-time error 91 when it is Nothing.
template <class Pointer>
auto& Required(const Pointer& pointer) {
  if (!pointer) throw RuntimeError(kObjectNotSet);
  return *pointer;
}

}  // namespace kvdm
