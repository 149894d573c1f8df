// The system's registry.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "platform/log.h"
#include "platform/registry.h"

namespace kvdm {

// What was preserved of a value stands in the key "History", then the value's name, below the
// value's own key, each under the time at which it was preserved. What the registry refuses is
// noted in the log.
class WindowsRegistry final : public Registry {
 public:
  explicit WindowsRegistry(std::shared_ptr<Log> log) : log_(std::move(log)) {}

  std::optional<RegistryValue> Read(RegistryRoot root, std::string_view key,
                                    std::string_view name) override;
  bool WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                 std::string_view text) override;
  void Preserve(RegistryRoot root, std::string_view key, std::string_view name) override;
  [[nodiscard]] bool Holds(char32_t character) const override;

  // What was preserved of a value, the oldest first.
  [[nodiscard]] std::vector<PreservedValue> Preserved(RegistryRoot root, std::string_view key,
                                                      std::string_view name) const;

 private:
  // False, after a line in the log, unless `done`.
  bool NotedUnless(bool done, std::string_view key, std::string_view name) const;

  std::shared_ptr<Log> log_;
};

}  // namespace kvdm
