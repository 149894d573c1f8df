#include "safety/path_prefix.h"

#include <algorithm>
#include <cstddef>

namespace kvdm {
namespace {

constexpr std::string_view kSeparators = "\\/";

bool IsSeparator(char character) { return kSeparators.find(character) != kSeparators.npos; }

bool IsLetter(char character) {
  return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

char Upper(char character) {
  return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A')
                                              : character;
}

bool SameLetters(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, Upper, Upper);
}

// Reads a path from its beginning, name by name.
class Reader {
 public:
  explicit Reader(std::string_view path) : path_(path) {
    if (path.size() > 1 && IsLetter(path[0]) && path[1] == ':') {
      root_ = {Upper(path[0]), ':'};
      place_ = 2;
    } else if (path.size() > 1 && IsSeparator(path[0]) && IsSeparator(path[1])) {
      root_ = "\\\\";
    } else if (path.starts_with('/')) {
      root_ = "Z:";
    }
  }

  // The drive, "\\" of a share, or "" of a path that begins in the current folder.
  [[nodiscard]] const std::string& Root() const { return root_; }
  [[nodiscard]] std::size_t Place() const { return place_; }

  // The next name; "" at the end.
  std::string_view Next() {
    const auto begin = path_.find_first_not_of(kSeparators, place_);
    if (begin == path_.npos) return {};
    place_ = std::min(path_.find_first_of(kSeparators, begin), path_.size());
    return path_.substr(begin, place_ - begin);
  }

 private:
  std::string_view path_;
  std::string root_;
  std::size_t place_ = 0;
};

// Where the folder `prefix` ends in `path`; nothing when it does not begin with it.
std::optional<std::size_t> EndOf(std::string_view prefix, std::string_view path) {
  Reader wanted(prefix);
  Reader found(path);
  if (wanted.Root().empty() || wanted.Root() != found.Root()) return std::nullopt;
  for (auto name = wanted.Next(); !name.empty(); name = wanted.Next()) {
    if (!SameLetters(name, found.Next())) return std::nullopt;
  }
  return found.Place();
}

std::string WithoutEnd(std::string_view folder) {
  const auto last = folder.find_last_not_of(kSeparators);
  return std::string(folder.substr(0, last == folder.npos ? 0 : last + 1));
}

// `folder` written as `model` is: with its separators, and without a drive if it has none.
std::string WrittenAs(std::string_view model, std::string folder) {
  const bool has_slashes = model.find('/') != model.npos && model.find('\\') == model.npos;
  if (has_slashes) std::ranges::replace(folder, '\\', '/');
  return model.starts_with('/') && folder.starts_with("Z:/") ? folder.substr(2) : folder;
}

}  // namespace

PathPrefix::PathPrefix(std::string_view from, std::string_view to, SamePlace same)
    : from_(WithoutEnd(from)), to_(WithoutEnd(to)), same_(std::move(same)) {}

std::optional<std::string> PathPrefix::Replaced(std::string_view path) const {
  const auto end = EndOf(from_, path);
  if (!end) return std::nullopt;
  const std::string_view matched = path.substr(0, *end);
  const bool is_as_written = WrittenAs(matched, from_) == matched;
  if (!is_as_written && same_ && !same_(matched, from_)) return std::nullopt;
  return WrittenAs(matched, to_) + std::string(path.substr(*end));
}

}  // namespace kvdm
