// JSON: documents from outside, and results as JSON.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "safety/result.h"

namespace kvdm {

using Json = nlohmann::ordered_json;

// Arrays and objects within each other. What goes through a document calls itself once a level.
inline constexpr int kMaxJsonDepth = 64;

// Failure kUnreadable.
[[noreturn]] void Unreadable(const std::string& sentence);

// The document of a text. Failure kUnreadable, with a sentence that begins with "It", for one that
// is not well-formed, is nested too deeply or holds a number that no program could hold.
[[nodiscard]] Json ParseJson(std::string_view text);

// The keys have the order of the fields.
[[nodiscard]] Json ToJson(const Field& field);
[[nodiscard]] Json ToJson(const Record& record);
[[nodiscard]] Json ToJson(const std::vector<Record>& records);

}  // namespace kvdm
