#include <algorithm>
#include <array>
#include <new>
#include <utility>

#include <kvdm/platform/error.h>

namespace kvdm {
namespace {

struct Description {
  std::int32_t number;
  std::string_view text;
};

constexpr std::array kDescriptions = {
    Description{kInvalidCall, "Invalid procedure call or argument"},
    Description{kOverflow, "Overflow"},
    Description{kOutOfMemory, "Out of memory"},
    Description{kSubscriptOutOfRange, "Subscript out of range"},
    Description{kTypeMismatch, "Type mismatch"},
    Description{kBadFileName, "Bad file name or number"},
    Description{kFileNotFound, "File not found"},
    Description{kFileExists, "File already exists"},
    Description{kInputPastEnd, "Input past end of file"},
    Description{kDeviceUnavailable, "Device unavailable"},
    Description{kPermissionDenied, "Permission denied"},
    Description{kPathFileAccess, "Path/File access error"},
    Description{kPathNotFound, "Path not found"},
    Description{kObjectNotSet, "Object variable or With block variable not set"},
    Description{kInvalidUseOfNull, "Invalid use of Null"},
    Description{kCannotCreateObject, "Component can't create object"},
    Description{kInterfaceNotSupported,
                "Class doesn't support the interface that is expected of it"},
    Description{kMemberNotSupported, "Object doesn't support this property or method"},
    Description{kActionNotSupported, "Object doesn't support this action"},
    Description{kWrongArgumentCount, "Wrong number of arguments or invalid property assignment"},
};

}  // namespace

RuntimeError::RuntimeError(std::int32_t number, std::string source)
    : RuntimeError(number, std::move(source), std::string(DescriptionOf(number))) {}

RuntimeError::RuntimeError(std::int32_t number, std::string source, const std::string& description,
                           std::string unsent_message)
    : std::runtime_error(description),
      number_(number),
      source_(std::move(source)),
      unsent_message_(std::move(unsent_message)) {}

std::string_view DescriptionOf(std::int32_t number) {
  const auto* found = std::ranges::find(kDescriptions, number, &Description::number);
  return found == kDescriptions.end() ? "Automation error" : found->text;
}

RuntimeError AsRuntimeError(const std::exception& error) {
  if (const auto* known = dynamic_cast<const RuntimeError*>(&error)) return *known;
  if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) return RuntimeError(kOutOfMemory);
  return {kAutomationFailure, {}, error.what()};
}

RuntimeError CurrentError() {
  try {
    throw;
  } catch (const std::exception& error) {
    return AsRuntimeError(error);
  } catch (...) {
    return RuntimeError(kAutomationFailure);
  }
}

std::vector<RuntimeError> ErrorChain(const std::exception& error) {
  std::vector<RuntimeError> chain = {AsRuntimeError(error)};
  const auto* nested = dynamic_cast<const std::nested_exception*>(&error);
  if (nested == nullptr || nested->nested_ptr() == nullptr) return chain;
  try {
    nested->rethrow_nested();
  } catch (const std::exception& cause) {
    const auto causes = ErrorChain(cause);
    chain.insert(chain.end(), causes.begin(), causes.end());
  } catch (...) {
    chain.push_back(CurrentError());
  }
  return chain;
}

}  // namespace kvdm
