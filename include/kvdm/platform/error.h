/// @file
/// Run-time error: the one exception type of the component, and the numbers its clients know.
#pragma once

#include <cstdint>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/export.h>

namespace kvdm {

/// Run-time error numbers as clients compare them. Numbers without a classic meaning are the
/// negative code of the service that failed.
enum ErrorNumber : std::int32_t {
  kInvalidCall = 5,                  ///< an argument that has no meaning there
  kOverflow = 6,                     ///< no free name is left
  kOutOfMemory = 7,                  ///< memory ran out, or a limit of documents is exceeded
  kSubscriptOutOfRange = 9,          ///< a position outside a list
  kTypeMismatch = 13,                ///< a value of another type
  kBadFileName = 52,                 ///< a name that no file can have
  kFileNotFound = 53,                ///< no such file
  kFileExists = 58,                  ///< the name is taken
  kInputPastEnd = 62,                ///< nothing left to read
  kDeviceUnavailable = 68,           ///< a store that can't be read
  kPermissionDenied = 70,            ///< the system refuses
  kPathFileAccess = 75,              ///< the system fails
  kPathNotFound = 76,                ///< no such folder
  kObjectNotSet = 91,                ///< Nothing where an object is needed
  kInvalidUseOfNull = 94,            ///< Null where a value is needed
  kCollectionMissing = 333,          ///< never reaches callers
  kCannotCreateObject = 429,         ///< an unknown class, or a library that is not there
  kInterfaceNotSupported = 430,      ///< an object without the interface
  kMemberNotSupported = 438,         ///< a report that could not be delivered
  kActionNotSupported = 445,         ///< an operation that an object does not offer
  kWrongArgumentCount = 450,         ///< too many or too few arguments
  kAutomationFailure = -2147467259,  ///< a look-up for a double quote, or any other failure
};

/// A run-time error. `what()` is the description that people read.
///
/// An error that replaces a report which could not be delivered carries that report's text in
/// `unsent_message`, and the failure that was to be reported is nested in it
/// (`std::rethrow_if_nested`), so that logs can show both.
class KVDM_EXPORT RuntimeError : public std::runtime_error {
 public:
  /// An error with the classic description of its number.
  explicit RuntimeError(std::int32_t number, std::string source = {});

  /// An error with a description of its own.
  RuntimeError(std::int32_t number, std::string source, const std::string& description,
               std::string unsent_message = {});

  /// The number by which clients tell errors apart.
  [[nodiscard]] std::int32_t number() const { return number_; }

  /// Who raised it; often "".
  [[nodiscard]] const std::string& source() const { return source_; }

  /// The report that could not be delivered; "" when there was none.
  [[nodiscard]] const std::string& unsent_message() const { return unsent_message_; }

 private:
  std::int32_t number_;
  std::string source_;
  std::string unsent_message_;
};

/// The classic description of an error number; "Automation error" for one without.
KVDM_EXPORT std::string_view DescriptionOf(std::int32_t number);

/// The number and description of any exception: a RuntimeError's own, 7 for exhausted memory, else
/// an automation failure.
KVDM_EXPORT RuntimeError AsRuntimeError(const std::exception& error);

/// The exception that is being handled, in the same way. One that is no std::exception, as a
/// foreign object may throw, is an automation failure.
KVDM_EXPORT RuntimeError CurrentError();

/// `error` and the failures nested in it, outermost first.
KVDM_EXPORT std::vector<RuntimeError> ErrorChain(const std::exception& error);

/// The object behind `pointer`; run-time error 91 when it is Nothing.
template <class Pointer>
auto& Required(const Pointer& pointer) {
  if (!pointer) throw RuntimeError(kObjectNotSet);
  return *pointer;
}

}  // namespace kvdm
