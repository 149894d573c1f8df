// The services that the hosted component stands on.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/output.h"
#include "platform/platform.h"

namespace kvdm {

// Passes everything on, and remembers whether a write was refused: the component does not ask.
class WatchedRegistry : public Registry {
 public:
  explicit WatchedRegistry(std::shared_ptr<Registry> registry) : registry_(std::move(registry)) {}

  std::optional<RegistryValue> Read(RegistryRoot root, std::string_view key,
                                    std::string_view name) override;
  bool WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                 std::string_view text) override;
  void Preserve(RegistryRoot root, std::string_view key, std::string_view name) override;
  [[nodiscard]] bool Holds(char32_t character) const override;

  [[nodiscard]] bool Refused() const { return refused_; }

 private:
  std::shared_ptr<Registry> registry_;
  bool refused_ = false;
};

// A catalogue text that did not parse and was kept before it was overwritten.
struct PreservedCatalogue {
  std::string when;  // UTC, such as "2026-11-15T07:35:30Z"
  std::string text;
};

struct Services {
  Platform platform;
  std::shared_ptr<WatchedRegistry> registry;  // the platform's
  std::function<std::vector<PreservedCatalogue>()> preserved_catalogues;
};

// This system's services. `drives` are the folders behind drive letters on a system that has no
// drives itself. Messages and log lines go to `out`, which must outlive them.
[[nodiscard]] Services MakeServices(const std::map<char, std::string>& drives, Output& out);

// Where the registry is, and what can be done when it refuses to be written, for people.
[[nodiscard]] std::string RegistryPlace();
[[nodiscard]] std::string RegistryAdvice();

// The file that is locked while a command changes what all projects share.
[[nodiscard]] std::filesystem::path RegistryLockFile();

}  // namespace kvdm
