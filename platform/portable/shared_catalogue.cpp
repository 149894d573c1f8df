#include "platform/portable/shared_catalogue.h"

#include <utility>

#include "platform/portable/catalogue_update.h"

namespace kvdm {

SharedCatalogue::SharedCatalogue(std::shared_ptr<Registry> registry,
                                 std::shared_ptr<XmlParser> parser, std::shared_ptr<Log> log,
                                 RegistryAddress address)
    : registry_(std::move(registry)),
      parser_(std::move(parser)),
      log_(std::move(log)),
      address_(std::move(address)) {}

std::optional<RegistryValue> SharedCatalogue::Read(RegistryRoot root, std::string_view key,
                                                   std::string_view name) {
  auto value = registry_->Read(root, key, name);
  if (!IsCatalogue(root, key, name)) return value;
  const bool is_text = value && value->type == RegistryType::kText;
  base_ = is_text ? UpToNul(value->data) : std::string();
  is_known_ = true;
  return value;
}

bool SharedCatalogue::WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                                std::string_view text) {
  if (!IsCatalogue(root, key, name)) return registry_->WriteText(root, key, name, text);
  return WriteCatalogue(text);
}

bool SharedCatalogue::WriteCatalogue(std::string_view text) {
  CatalogueUpdate update(*parser_, base_, std::string(text),
                         [this](char32_t character) { return registry_->Holds(character); });
  // Whoever never saw the catalogue and changed nothing does not need the registry.
  if (!is_known_ && ChangesNothing(update)) return true;
  if (!registry_->Update(address_.root, address_.key, address_.name, update)) return false;
  for (const std::string& note : update.Notes()) log_->Note(note);
  base_ = update.TakeWanted();
  return true;
}

bool SharedCatalogue::Update(RegistryRoot root, std::string_view key, std::string_view name,
                             const TextUpdate& update) {
  return registry_->Update(root, key, name, update);
}

std::vector<KeptValue> SharedCatalogue::Kept(RegistryRoot root, std::string_view key,
                                             std::string_view name) {
  return registry_->Kept(root, key, name);
}

bool SharedCatalogue::IsCatalogue(RegistryRoot root, std::string_view key,
                                  std::string_view name) const {
  return root == address_.root && key == address_.key && name == address_.name;
}

}  // namespace kvdm
