// Results as texts that people can compare, the same for the component and for the model.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include <kvdm/datamanager/name_list.h>
#include <kvdm/platform/error.h>

#include "tests/model/model.h"

namespace kvdm::model {

// A text in quotes, with control characters as \x01.
[[nodiscard]] std::string Describe(const std::string& text);
[[nodiscard]] std::string Describe(bool result);
[[nodiscard]] std::string Describe(const std::vector<std::string>& texts);
[[nodiscard]] std::string Describe(const std::shared_ptr<NameList>& list);
[[nodiscard]] std::string Describe(const std::optional<Texts>& list);
[[nodiscard]] std::string Describe(const std::optional<ValueList>& values);
[[nodiscard]] std::string Describe(int number, const std::string& unsent_message);

template <class Object>
[[nodiscard]] std::string Describe(const std::shared_ptr<Object>& object) {
  return object ? "an object" : "Nothing";
}

// The text that `call` answers, or its error.
template <class Call>
[[nodiscard]] std::string TextOrError(Call&& call) {
  try {
    return call();
  } catch (const RuntimeError& error) {
    return Describe(error.number(), error.unsent_message());
  } catch (const Fault& fault) {
    return Describe(fault.number, fault.unsent_message);
  }
}

// What `call` answers, or its error.
template <class Call>
[[nodiscard]] std::string OutcomeOf(Call&& call) {
  return TextOrError([&]() -> std::string {
    if constexpr (std::is_void_v<decltype(call())>) {
      call();
      return "done";
    } else {
      return Describe(call());
    }
  });
}

}  // namespace kvdm::model
