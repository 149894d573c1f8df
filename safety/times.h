// Times as documents store them, and as programs read them (ISO 8601). Both are local times.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kvdm {

// Nothing for a text that is no time in the stored form.
//
//   IsoTime("11/15/2026 7:35:30 PM")   // "2026-11-15T19:35:30"
[[nodiscard]] std::optional<std::string> IsoTime(std::string_view stored);

// The other way round; a date alone is its midnight.
//
//   StoredTime("2026-11-15")   // "11/15/2026 12:00:00 AM"
[[nodiscard]] std::optional<std::string> StoredTime(std::string_view iso);

}  // namespace kvdm
