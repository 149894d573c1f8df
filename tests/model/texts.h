// The names and messages of each kind of item.
#pragma once

#include <string>

#include "tests/model/kinds.h"

namespace kvdm::model {

struct KindTexts {
  std::string collection;
  std::string item;
  std::string cannot_reach;
  std::string cannot_list;
  std::string cannot_create;
  std::string cannot_delete;
  std::string cannot_get;
  std::string folder;
};

[[nodiscard]] const KindTexts& TextsOf(Kind kind);

// How a stored property is read and written.
struct PropertyRule {
  Kind kind;
  std::string property;
  std::string attribute;
  bool is_wrapped = false;
  bool saves = true;
  // What a missing attribute does: its fault passes, or this is shown, or, when empty, nothing.
  bool passes_fault = false;
  std::string shown = {};
};

[[nodiscard]] const PropertyRule& RuleOf(Kind kind, std::string_view property);

[[nodiscard]] std::string Wrapped(std::string_view name);
[[nodiscard]] std::string Unwrapped(const std::string& name);

}  // namespace kvdm::model
