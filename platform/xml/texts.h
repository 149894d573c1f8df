// The texts of a tree and the names in it, each told by a small number.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/xml/pool.h"

namespace kvdm::xml {

// Where a text stands among the texts of a tree.
struct Piece {
  Number at = 0;
  Number size : 31 = 0;
  Number is_plain : 1 = 0;  // stands for itself wherever it is written
};

// The text that was loaded, which stays as it is, and what was added since.
class Texts {
 public:
  [[nodiscard]] std::string_view operator[](Piece piece) const {
    const bool added = piece.at >= kAdded;
    return {(added ? added_.data() - kAdded : loaded_.data()) + piece.at, piece.size};
  }

  // Makes `text` the one that was loaded. Behind it are eight zeros at least.
  std::string_view Load(std::string_view text);
  [[nodiscard]] Piece PieceOf(const char* begin, const char* end, bool is_plain) const {
    return {static_cast<Number>(begin - loaded_.data()), static_cast<Number>(end - begin),
            is_plain};
  }

  // Adds `text`, and what an element is written as. Run-time error 7 when there is too much.
  Piece Add(std::string_view text);
  Piece AddForm(std::string_view form);
  // Whether there is room for much more than that.
  [[nodiscard]] bool HasRoomFor(std::size_t size) const {
    return added_.size() + size < kAdded / 2;
  }
  // Whether `text` can be written over `piece`; and writes it there.
  [[nodiscard]] bool Fits(Piece piece, std::string_view text) const {
    return piece.at >= kAdded && text.size() <= piece.size;
  }
  Piece Overwrite(Piece piece, std::string_view text) noexcept;
  // Nothing stands for `piece` any more.
  void Drop(Piece piece) noexcept;

  // Whether much of all that is here stands for nothing.
  [[nodiscard]] bool IsWasteful() const {
    return dropped_ > kWaste && dropped_ > (loaded_.size() + added_.size()) / 2;
  }
  // Moves what was added together. `each` calls what it is given with all pieces in use.
  template <class Each>
  void MoveTogether(const Each& each) {
    std::string together;
    together.reserve(added_.size() - dropped_);
    each([&](Piece& piece) {
      if (piece.at < kAdded) return;
      const std::string_view text = (*this)[piece];
      piece.at = kAdded + static_cast<Number>(together.size());
      together += text;
    });
    added_ = std::move(together);
    dropped_ = 0;
  }

 private:
  static constexpr Number kAdded = Number{1} << 31U;
  static constexpr std::size_t kWaste = 65536;

  std::string loaded_;
  std::string added_;
  std::size_t dropped_ = 0;
};

// A name and how it is written.
struct Name {
  explicit Name(std::string_view name);

  std::string text;
  std::string attribute;  // ` name="`
  std::string start_tag;  // `<name`
  std::string end_tag;    // `</name>`
  bool is_prefixed;       // or declares a prefix or the default namespace
};

// Names stay as long as the tree.
class Names {
 public:
  const Name& operator[](Number number) const { return *names_[number - 1]; }
  // The number of a name; 0 when it is none of these.
  [[nodiscard]] Number Find(std::string_view text) const {
    if (text.empty()) return 0;
    const auto last = static_cast<unsigned char>(text.back());
    Number& recent = recent_[(text.size() * 5 + last) % recent_.size()];
    if (recent != 0 && names_[recent - 1]->text == text) return recent;
    const Number found = FindAny(text);
    return found == 0 ? 0 : recent = found;
  }
  // The number of a name, which is added when it is missing.
  Number Add(std::string_view text);
  // Whether one of them has to do with prefixes.
  [[nodiscard]] bool HavePrefixes() const { return have_prefixes_; }

 private:
  [[nodiscard]] Number FindAny(std::string_view text) const {
    const auto found = numbers_.find(text);
    return found == numbers_.end() ? 0 : found->second;
  }

  std::vector<std::unique_ptr<const Name>> names_;
  std::unordered_map<std::string_view, Number> numbers_;
  mutable std::array<Number, 64> recent_{};  // by size and last character
  bool have_prefixes_ = false;
};

}  // namespace kvdm::xml
