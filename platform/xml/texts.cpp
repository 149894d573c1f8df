#include "platform/xml/texts.h"

#include <kvdm/platform/error.h>

#include "platform/xml/xml_text.h"

namespace kvdm::xml {

std::string_view Texts::Load(std::string_view text) {
  constexpr std::size_t kBehind = 8;
  loaded_.reserve(text.size() + kBehind);
  loaded_.assign(text).append(kBehind, '\0');
  return std::string_view(loaded_).substr(0, text.size());
}

Piece Texts::Add(std::string_view text) {
  Piece piece = AddForm(text);
  piece.is_plain = PlainRun(text) == text.size();
  return piece;
}

Piece Texts::AddForm(std::string_view text) {
  const std::size_t end = added_.size() + text.size();
  if (end >= kAdded) throw RuntimeError(kOutOfMemory);
  if (end > added_.capacity()) added_.reserve(end + end / 4);
  const Piece piece{kAdded + static_cast<Number>(added_.size()), static_cast<Number>(text.size())};
  added_ += text;
  return piece;
}

Piece Texts::Overwrite(Piece piece, std::string_view text) noexcept {
  text.copy(added_.data() + (piece.at - kAdded), text.size());
  dropped_ += piece.size - text.size();
  return {piece.at, static_cast<Number>(text.size()), PlainRun(text) == text.size()};
}

void Texts::Drop(Piece piece) noexcept {
  if (piece.at >= kAdded) dropped_ += piece.size;
}

Name::Name(std::string_view name)
    : text(name),
      attribute(" " + text + "=\""),
      start_tag("<" + text),
      end_tag("</" + text + ">"),
      is_prefixed(!PrefixOf(name).empty() || IsNamespaceDeclaration(name)) {}

Number Names::Add(std::string_view text) {
  if (const Number known = Find(text)) return known;
  auto name = std::make_unique<const Name>(text);
  names_.reserve(names_.size() + 1);
  const auto number = static_cast<Number>(names_.size() + 1);
  numbers_.emplace(name->text, number);
  have_prefixes_ = have_prefixes_ || name->is_prefixed;
  names_.push_back(std::move(name));
  return number;
}

}  // namespace kvdm::xml
