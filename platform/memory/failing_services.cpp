#include "platform/memory/failing_services.h"

namespace kvdm {

std::optional<RegistryValue> FailingRegistry::Read(RegistryRoot root, std::string_view key,
                                                   std::string_view name) {
  return Counted().Read(root, key, name);
}

bool FailingRegistry::WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                                std::string_view text) {
  return !FailsNow() && Inner()->WriteText(root, key, name, text);
}

bool FailingRegistry::Update(RegistryRoot root, std::string_view key, std::string_view name,
                             const TextUpdate& update) {
  return !FailsNow() && Inner()->Update(root, key, name, update);
}

std::vector<KeptValue> FailingRegistry::Kept(RegistryRoot root, std::string_view key,
                                             std::string_view name) {
  return Counted().Kept(root, key, name);
}

RegistryCondition FailingRegistry::Condition() const { return Inner()->Condition(); }

bool FailingRegistry::Holds(char32_t character) const { return Inner()->Holds(character); }

void FailingMessageBox::Show(std::string_view text, std::string_view caption, MessageStyle style) {
  Counted().Show(text, caption, style);
}

bool FailingXmlParser::Parse(std::string_view text, XmlEncoding encoding, XmlHandler& handler) {
  return !FailsNow() && Inner()->Parse(text, encoding, handler);
}

DateTime FailingClock::Now() { return Counted().Now(); }

void FailingIdentifier::Generate() { Counted().Generate(); }

std::string FailingIdentifier::GetValue() const { return Counted().GetValue(); }

void FailingIdentifier::PutValue(std::string_view text) { Counted().PutValue(text); }

std::vector<Value> FailingNamedValueSet::GetValues(std::string_view path) {
  return Counted().GetValues(path);
}

void FailingNamedValueSet::PutValue(std::string_view path, const Value& value) {
  Counted().PutValue(path, value);
}

NamedValueSet::Listing FailingNamedValueSet::ListAll() { return Counted().ListAll(); }

int FailingNamedValueSet::EntryCount() { return Counted().EntryCount(); }

void FailingNamedValueSet::PrepareForUpdate() { Counted().PrepareForUpdate(); }

std::shared_ptr<Identifier> FailingGisCore::CreateIdentifier() {
  return Wrap<FailingIdentifier>(Counted().CreateIdentifier());
}

std::shared_ptr<NamedValueSet> FailingGisCore::CreateNamedValueSet() {
  return Wrap<FailingNamedValueSet>(Counted().CreateNamedValueSet());
}

void FailingVariantStream::Write(const Value& value) { Counted().Write(value); }

Value FailingVariantStream::Read() { return Counted().Read(); }

std::shared_ptr<NamedValueSet> FailingLayerMetadata::ReadDocument() {
  return Wrap<FailingNamedValueSet>(Counted().ReadDocument());
}

void FailingLayerMetadata::WriteDocument(const std::shared_ptr<NamedValueSet>& document) {
  const auto wrapped = std::dynamic_pointer_cast<FailingNamedValueSet>(document);
  Counted().WriteDocument(wrapped ? wrapped->Inner() : document);
}

Value FailingDatasetManager::Initialize() { return Counted().Initialize(); }

std::string FailingResourceFinder::FindString(std::string_view id) {
  return Counted().FindString(id);
}

std::shared_ptr<DatasetManager> FailingSiblings::CreateDatasetManager() {
  return Wrap<FailingDatasetManager>(Counted().CreateDatasetManager());
}

std::shared_ptr<ResourceFinder> FailingSiblings::CreateResourceFinder() {
  return Wrap<FailingResourceFinder>(Counted().CreateResourceFinder());
}

Value FailingPropertySet::GetProperty(std::string_view name) { return Counted().GetProperty(name); }

void FailingPropertySet::SetProperty(std::string_view name, const Value& value) {
  Counted().SetProperty(name, value);
}

std::shared_ptr<HostPropertySet> FailingHost::CurrentState() {
  return Wrap<FailingPropertySet>(Counted().CurrentState());
}

std::shared_ptr<HostPropertySet> FailingHost::Settings() {
  return Wrap<FailingPropertySet>(Counted().Settings());
}

}  // namespace kvdm
