#include "util/error_chain.h"

namespace kvdm {

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
