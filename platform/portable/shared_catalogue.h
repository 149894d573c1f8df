// The registry as one data manager sees it: its writes of the catalogue change what it changed
// itself, whatever others have written since it read.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/log.h>
#include <kvdm/platform/registry.h>

#include "platform/portable/catalogue_update.h"
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

  // Whether the stored study areas are others than those that were last read, or written, here.
  // Run-time error 68 when they can't be read.
  [[nodiscard]] bool ChangedByOthers();

  // The catalogue as it is stored now, with the changes that led from the base to `wanted`; ""
  // where neither has any. Holds once it is adopted. Run-time error 68 when it can't be read, 5
  // when it is not well-formed.
  [[nodiscard]] CatalogueReading ReadAgain(std::string wanted);
  void Adopt(CatalogueReading reading) noexcept;

 private:
  [[nodiscard]] std::string StoredText();
  [[nodiscard]] CatalogueUpdate UpdateTo(std::string_view base, std::string wanted);
  void Tell(const CatalogueUpdate& update);
  [[nodiscard]] bool IsCatalogue(RegistryRoot root, std::string_view key,
                                 std::string_view name) const;
  bool WriteCatalogue(std::string_view text);

  std::shared_ptr<Registry> registry_;
  std::shared_ptr<XmlParser> parser_;
  std::shared_ptr<Log> log_;
  RegistryAddress address_;
  std::string base_;
  std::string seen_;       // what was stored when it was last read or written
  bool is_known_ = false;  // whether the value was ever read
};

}  // namespace kvdm
