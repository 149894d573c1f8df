// Text for the system: UTF-16, and the ANSI code page of the process, in which the registry and
// message boxes take text.
#pragma once

#include <string>
#include <string_view>

namespace kvdm {

// UTF-8 text as UTF-16. Bytes that are not UTF-8 become U+FFFD each.
[[nodiscard]] std::wstring ToUtf16(std::string_view text);

// UTF-16 text as UTF-8. A surrogate without its pair becomes U+FFFD.
[[nodiscard]] std::string ToUtf8(std::wstring_view text);

// UTF-8 text as bytes in the code page with this number, or in that of the process. A character
// that it does not have becomes "?", two of them where the character takes two UTF-16 units; there
// are no best-fit substitutes.
[[nodiscard]] std::string ToAnsi(std::string_view text, unsigned page);
[[nodiscard]] std::string ToAnsi(std::string_view text);

// Bytes in the code page as UTF-8 text.
[[nodiscard]] std::string FromAnsi(std::string_view bytes, unsigned page);
[[nodiscard]] std::string FromAnsi(std::string_view bytes);

// The ANSI code page of the machine, which a process may have changed for itself.
[[nodiscard]] unsigned MachineCodePage();

// Whether the code page has `character`.
[[nodiscard]] bool HasAnsi(char32_t character, unsigned page);
[[nodiscard]] bool HasAnsi(char32_t character);

}  // namespace kvdm
