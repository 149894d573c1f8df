// One row of a result: flat named fields in a fixed order.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace kvdm {

// Text, a whole number, a yes or no, or nothing.
using Field = std::variant<std::monostate, std::string, std::int64_t, bool>;

// Names are in snake_case: they are the keys of the JSON output, and the headings for people.
using Record = std::vector<std::pair<std::string, Field>>;

}  // namespace kvdm
