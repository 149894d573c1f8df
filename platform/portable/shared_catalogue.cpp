#include "platform/portable/shared_catalogue.h"

#include <utility>

namespace kvdm {
namespace {

std::string TextIn(const std::optional<RegistryValue>& value) {
  const bool is_text = value && value->type == RegistryType::kText;
  return is_text ? UpToNul(value->data) : std::string();
}

}  // namespace

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
  base_ = seen_ = TextIn(value);
  is_known_ = true;
  return value;
}

std::string SharedCatalogue::StoredText() {
  return TextIn(registry_->Read(address_.root, address_.key, address_.name));
}

CatalogueUpdate SharedCatalogue::UpdateTo(std::string_view base, std::string wanted) {
  return {*parser_, base, std::move(wanted),
          [this](char32_t character) { return registry_->Holds(character); }};
}

void SharedCatalogue::Tell(const CatalogueUpdate& update) {
  for (const std::string& note : update.Notes()) log_->Note(note);
}

bool SharedCatalogue::ChangedByOthers() {
  std::string stored = StoredText();
  return stored != seen_ && !ChangesNothing(UpdateTo(seen_, std::move(stored)));
}

CatalogueReading SharedCatalogue::ReadAgain(std::string wanted) {
  const CatalogueUpdate update = UpdateTo(base_, std::move(wanted));
  CatalogueReading reading = update.ReadAgain(StoredText());
  Tell(update);
  return reading;
}

void SharedCatalogue::Adopt(CatalogueReading reading) noexcept {
  base_ = std::move(reading.base);
  seen_ = std::move(reading.stored);
  is_known_ = true;
}

bool SharedCatalogue::WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                                std::string_view text) {
  if (!IsCatalogue(root, key, name)) return registry_->WriteText(root, key, name, text);
  return WriteCatalogue(text);
}

bool SharedCatalogue::WriteCatalogue(std::string_view text) {
  CatalogueUpdate update = UpdateTo(base_, std::string(text));
  // Whoever never saw the catalogue and changed nothing does not need the registry.
  if (!is_known_ && ChangesNothing(update)) return true;
  if (!registry_->Update(address_.root, address_.key, address_.name, update)) return false;
  Tell(update);
  base_ = seen_ = update.TakeWanted();
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
