// What tests of registries share: the root they use, and an update that keeps what is stored and
// replaces it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/registry.h>

namespace kvdm {

inline constexpr auto kMachine = RegistryRoot::kLocalMachine;

class Replacing final : public TextUpdate {
 public:
  explicit Replacing(std::string_view text) : text_(text) {}

  [[nodiscard]] std::vector<Piece> Base() const override { return {}; }
  [[nodiscard]] std::vector<Piece> Wanted() const override { return {{"", 0, text_}}; }
  [[nodiscard]] Outcome On(const std::optional<RegistryValue>& stored) const override {
    return {text_, stored.has_value(), kept};
  }

  std::vector<std::string> kept;  // besides

 private:
  std::string text_;
};

}  // namespace kvdm
