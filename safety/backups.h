// Numbered backups of a file: its last states, as NAME.~1~, NAME.~2~ ... beside it.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace kvdm {

// How many states of a file are kept.
inline constexpr std::size_t kMostBackups = 10;

class Backups {
 public:
  explicit Backups(std::filesystem::path file) : file_(std::move(file)) {}

  // Their numbers; a later state has a higher one.
  [[nodiscard]] std::vector<int> Numbers() const;
  [[nodiscard]] std::filesystem::path FileOf(int number) const;
  // When a state was kept: "2026-11-15T07:35:30Z".
  [[nodiscard]] std::string When(int number) const;
  // Failure kNotFound for a number that there is not, kUnreadable.
  [[nodiscard]] std::string Read(int number) const;

  // Keeps a state, unless the last one is the same. The oldest go. std::system_error.
  void Keep(std::string_view state) const;

 private:
  std::filesystem::path file_;
};

}  // namespace kvdm
