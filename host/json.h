// JSON that came from outside.
#pragma once

#include <string_view>

#include <nlohmann/json.hpp>

namespace kvdm {

using Json = nlohmann::ordered_json;

// Arrays and objects within each other. What goes through a document calls itself once a level.
inline constexpr int kMaxJsonDepth = 64;

// The document of a text. Failure kUnreadable, with a sentence that begins with "It", for one that
// is not well-formed, is nested too deeply or holds a number that no program could hold.
[[nodiscard]] Json ParseJson(std::string_view text);

}  // namespace kvdm
