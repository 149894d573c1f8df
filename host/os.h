// What the host asks of the operating system itself: its files, and the terminal.
#pragma once

#include <cstddef>
#include <string>

#include "safety/os.h"

namespace kvdm::os {

[[nodiscard]] bool InputIsTerminal();
// Adds what standard input has to `text`, and waits while it has nothing. False at its end.
bool ReadInput(std::string& text);
// Whether that would wait now.
[[nodiscard]] bool InputWouldWait();

// Whether standard output is a terminal that knows escape sequences.
[[nodiscard]] bool OutputIsTerminal();

// The columns that a character takes on a terminal: 0, 1 or 2.
[[nodiscard]] std::size_t ColumnsOf(char32_t character);

// The environment variable; "" when it is not set.
[[nodiscard]] std::string Environment(const char* name);

}  // namespace kvdm::os
