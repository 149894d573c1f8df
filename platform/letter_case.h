// The letter case of file names. Each operating system brings its own table.
#pragma once

namespace kvdm {

// `unit`, a UTF-16 unit, in upper case as file names are compared; itself when it has no other
// case.
[[nodiscard]] char16_t UpperCase(char16_t unit);

}  // namespace kvdm
