// Serializer: the text form of a tree or of a part of it, and its size.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/xml/pool.h"

namespace kvdm::xml {

class Tree;

inline constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n";
inline constexpr std::string_view kLineEnd = "\r\n";

// Where a text stands decides what can't stand there as it is: in an attribute's value, in an
// element, or in a comment or instruction.
enum class Place { kAttribute, kText, kRemark };

// All characters that are written otherwise somewhere; and how one is, "" for as it is.
inline constexpr std::string_view kSpecial = "\n<>&\"\t\r";
[[nodiscard]] std::string_view WrittenAs(char character, Place place);

// An element and where its text form is.
struct WrittenElement {
  Number element;
  std::size_t at;
  std::size_t size;
};

// The text form of `number` and all below it. Characters beyond ASCII for which `holds` answers
// false are written as numeric references, in comments and instructions as "?"; a null `holds`
// replaces none. Run-time error 5 when a name can't be held. `fresh` gets the small elements whose
// form was not kept, without those below them.
[[nodiscard]] std::string TextForm(const Tree& tree, Number number,
                                   const std::function<bool(char32_t)>* holds = nullptr,
                                   std::vector<WrittenElement>* fresh = nullptr);

// The sizes of text forms in which nothing is replaced: of a text by itself; of ` name="value"`
// with a value of that size; of `<tag/>`, and what an element with content takes more; and of the
// other nodes with a text of that size.
[[nodiscard]] std::size_t EscapedBytes(std::string_view text, Place place);
[[nodiscard]] std::size_t AttributeBytes(std::string_view name, std::size_t value);
[[nodiscard]] std::size_t EmptyElementBytes(std::string_view tag);
[[nodiscard]] std::size_t ClosingBytes(std::string_view tag);
[[nodiscard]] std::size_t CommentBytes(std::size_t text);
[[nodiscard]] std::size_t InstructionBytes(std::string_view target, std::size_t data);

}  // namespace kvdm::xml
