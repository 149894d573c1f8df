// How the attribute PATHTYPE tells the form of a file path.
#pragma once

namespace kvdm::path_types {

inline constexpr char kRelative[] = "RELATIVE";
inline constexpr char kAbsolute[] = "ABSOLUTE";

}  // namespace kvdm::path_types
