// The registry as one data manager sees it: its writes of the catalogue change what it changed
// itself, whatever others have written since it read.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/log.h>
#include <kvdm/platform/registry.h>

#include "platform/xml_parser.h"

namespace kvdm {

struct RegistryAddress {
  RegistryRoot root = RegistryRoot::kLocalMachine;
  std::string key;
  std::string name;
};

// Keeps the base: the catalogue as this reader believes it to be stored. That is the text last read
// here, or the one last written here with success; never what a write made of it together with the
// changes of others. After a read that failed it is what it was, at first empty: then a write only
// adds. Everything but the one value at `address` goes straight to the registry behind.
class SharedCatalogue final : public Registry {
 public:
  SharedCatalogue(std::shared_ptr<Registry> registry, std::shared_ptr<XmlParser> parser,
                  std::shared_ptr<Log> log, RegistryAddress address);

  std::optional<RegistryValue> Read(RegistryRoot root, std::string_view key,
                                    std::string_view name) override;
  bool WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                 std::string_view text) override;
  bool Update(RegistryRoot root, std::string_view key, std::string_view name,
              const TextUpdate& update) override;
  std::vector<KeptValue> Kept(RegistryRoot root, std::string_view key,
                              std::string_view name) override;
  [[nodiscard]] std::string Stamp() const override { return registry_->Stamp(); }
  [[nodiscard]] RegistryCondition Condition() const override { return registry_->Condition(); }
  [[nodiscard]] bool Holds(char32_t character) const override {
    return registry_->Holds(character);
  }

 private:
  [[nodiscard]] bool IsCatalogue(RegistryRoot root, std::string_view key,
                                 std::string_view name) const;
  bool WriteCatalogue(std::string_view text);

  std::shared_ptr<Registry> registry_;
  std::shared_ptr<XmlParser> parser_;
  std::shared_ptr<Log> log_;
  RegistryAddress address_;
  std::string base_;
  bool is_known_ = false;  // whether the value was ever read
};

}  // namespace kvdm
