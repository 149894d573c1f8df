// The text form of the pieces that documents are made of.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace kvdm::xml {

// Appends pieces of the text form to a text. Characters beyond ASCII for which `holds` answers
// false are replaced; a null `holds` replaces none.
class Serializer {
 public:
  using Holds = std::function<bool(char32_t)>;

  explicit Serializer(std::string& output, const Holds* holds = nullptr)
      : output_(output), holds_(holds) {}

  // ASCII as it stands.
  void Markup(std::string_view markup) { output_ += markup; }
  // Run-time error 5 when a character can't be held.
  void Name(std::string_view name);
  void AttributeValue(std::string_view value);
  void Text(std::string_view text);
  // What stands in a comment or an instruction, up to its end.
  void Remark(std::string_view text);

 private:
  [[nodiscard]] bool CanHold(char32_t character) const;
  // `replacement` gives the text for a character that can't be held, before the rest of `text`.
  template <class Replacement>
  void Append(std::string_view text, const Replacement& replacement);

  std::string& output_;
  const Holds* holds_;
};

// The sizes of text forms in which nothing is replaced.
[[nodiscard]] std::size_t AttributeBytes(std::string_view name, std::string_view value);
[[nodiscard]] std::size_t TextBytes(std::string_view text);
[[nodiscard]] std::size_t RemarkBytes(std::string_view text);

}  // namespace kvdm::xml
