// Which texts and names XML can hold, and steps through a text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kvdm::xml {

// What the prefix "xml" stands for everywhere.
inline constexpr std::string_view kXmlNamespace = "http://www.w3.org/XML/1998/namespace";

[[nodiscard]] bool IsXmlCharacter(char32_t character);

// The number that has `byte` eight times.
constexpr std::uint64_t Each(std::uint64_t byte) { return byte * 0x0101010101010101U; }

// Mark the first byte of `word` that may be written otherwise somewhere: a control character, ", &,
// < or >; the second one also the first that is not ASCII, and is faster. " and & differ in one
// bit, as < and > do. What is below a number gets its high bit when that is subtracted.
constexpr std::uint64_t Markup(std::uint64_t word) {
  const std::uint64_t quoting = (word | Each(4)) ^ Each('&');
  const std::uint64_t bracket = (word | Each(2)) ^ Each('>');
  return (((word - Each(0x20)) & ~word) | ((quoting - Each(1)) & ~quoting) |
          ((bracket - Each(1)) & ~bracket)) &
         Each(0x80);
}
constexpr std::uint64_t MarkupOrForeign(std::uint64_t word) {
  const std::uint64_t quoting = (word | Each(4)) ^ Each('&');
  const std::uint64_t bracket = (word | Each(2)) ^ Each('>');
  return (word | (word - Each(0x20)) | (quoting - Each(1)) | (bracket - Each(1))) & Each(0x80);
}

// How many bytes at the start of `text` stand for themselves wherever they are written: up to the
// first control character, ", &, < or >.
[[nodiscard]] std::size_t PlainRun(std::string_view text);

// Whether all of `text` is ASCII that stands for itself wherever it is written.
[[nodiscard]] bool IsPlainAscii(std::string_view text);

// A text with U+FFFD for every character that XML forbids and every byte that is not UTF-8. Lives
// no longer than `text`, of which it is a view where nothing is replaced.
class Sanitized {
 public:
  explicit Sanitized(std::string_view text);
  Sanitized(const Sanitized&) = delete;
  Sanitized& operator=(const Sanitized&) = delete;

  operator std::string_view() const { return view_; }  // NOLINT(google-explicit-constructor)

 private:
  std::string replaced_;
  std::string_view view_;
};

// The same for an attribute value or a text. Run-time error 7 when it is longer than those may be.
class SanitizedValue final : public Sanitized {
 public:
  explicit SanitizedValue(std::string_view text);
};

// Whether `name` is an XML name; it may have a prefix.
[[nodiscard]] bool IsName(std::string_view name);

// Whether `name` is an XML name without a prefix.
[[nodiscard]] bool IsPlainName(std::string_view name);

// Whether an attribute with this name declares a name prefix or the default namespace.
[[nodiscard]] bool IsNamespaceDeclaration(std::string_view name);

// The part of a name before its colon; "" without one.
[[nodiscard]] std::string_view PrefixOf(std::string_view name);

inline constexpr std::string_view kWhiteSpace = " \t\r\n";

// Takes `expected` off the start of `rest`; false when that starts otherwise.
bool Skip(std::string_view expected, std::string_view& rest);

// Takes white space off the start of `rest`; false when there is none.
bool SkipWhiteSpace(std::string_view& rest);

}  // namespace kvdm::xml
