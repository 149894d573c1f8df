// The system's registry.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/log.h>
#include <kvdm/platform/registry.h>

namespace kvdm {

// What was kept of a value stands in the key "History", then the value's name, below the value's
// own key, each under the time at which it was kept. An update holds off those of all other
// processes and users of the machine.
class WindowsRegistry final : public Registry {
 public:
  explicit WindowsRegistry(std::shared_ptr<Log> log) : log_(std::move(log)) {}

  std::optional<RegistryValue> Read(RegistryRoot root, std::string_view key,
                                    std::string_view name) override;
  bool WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                 std::string_view text) override;
  bool Update(RegistryRoot root, std::string_view key, std::string_view name,
              const TextUpdate& update) override;
  std::vector<KeptValue> Kept(RegistryRoot root, std::string_view key,
                              std::string_view name) override;
  [[nodiscard]] RegistryCondition Condition() const override { return condition_; }
  [[nodiscard]] bool Holds(char32_t character) const override;

 private:
  // Whether `operation` ended without an error, which otherwise is noted.
  template <class Operation>
  bool Done(std::string_view key, std::string_view name, Operation operation);

  std::shared_ptr<Log> log_;
  RegistryCondition condition_;
};

}  // namespace kvdm
