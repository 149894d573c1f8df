#include "platform/memory/failing_services.h"

namespace kvdm {

std::optional<RegistryValue> FailingRegistry::Read(RegistryRoot root, std::string_view key,
                                                   std::string_view name) {
  return Counted("registry.Read", name).Read(root, key, name);
}

bool FailingRegistry::WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                                std::string_view text) {
  return !FailsNow("registry.WriteText", name) && Inner()->WriteText(root, key, name, text);
}

bool FailingRegistry::Update(RegistryRoot root, std::string_view key, std::string_view name,
                             const TextUpdate& update) {
  return !FailsNow("registry.Update", name) && Inner()->Update(root, key, name, update);
}

std::vector<KeptValue> FailingRegistry::Kept(RegistryRoot root, std::string_view key,
                                             std::string_view name) {
  return Counted("registry.Kept", name).Kept(root, key, name);
}

RegistryCondition FailingRegistry::Condition() const { return Inner()->Condition(); }

bool FailingRegistry::Holds(char32_t character) const { return Inner()->Holds(character); }

void FailingMessageBox::Show(std::string_view text, std::string_view caption, MessageStyle style) {
  Counted("message_box.Show", text).Show(text, caption, style);
}

bool FailingXmlParser::Parse(std::string_view text, XmlEncoding encoding, XmlHandler& handler) {
  return !FailsNow("xml_parser.Parse") && Inner()->Parse(text, encoding, handler);
}

DateTime FailingClock::Now() { return Counted("clock.Now").Now(); }

void FailingIdentifier::Generate() { Counted("identifier.Generate").Generate(); }

std::string FailingIdentifier::GetValue() const {
  return Counted("identifier.GetValue").GetValue();
}

void FailingIdentifier::PutValue(std::string_view text) {
  Counted("identifier.PutValue").PutValue(text);
}

std::vector<Value> FailingNamedValueSet::GetValues(std::string_view path) {
  auto values = Counted("value_set.GetValues", path).GetValues(path);
  if (GivesNothing()) values.clear();
  return values;
}

void FailingNamedValueSet::PutValue(std::string_view path, const Value& value) {
  Counted("value_set.PutValue", path).PutValue(path, value);
}

NamedValueSet::Listing FailingNamedValueSet::ListAll() {
  auto listing = Counted("value_set.ListAll").ListAll();
  if (GivesNothing()) listing.values.clear();
  return listing;
}

int FailingNamedValueSet::EntryCount() { return Counted("value_set.EntryCount").EntryCount(); }

void FailingNamedValueSet::PrepareForUpdate() {
  Counted("value_set.PrepareForUpdate").PrepareForUpdate();
}

std::shared_ptr<Identifier> FailingGisCore::CreateIdentifier() {
  return Wrap<FailingIdentifier>(Counted("gis_core.CreateIdentifier").CreateIdentifier());
}

std::shared_ptr<NamedValueSet> FailingGisCore::CreateNamedValueSet() {
  return Wrap<FailingNamedValueSet>(Counted("gis_core.CreateNamedValueSet").CreateNamedValueSet());
}

void FailingVariantStream::Write(const Value& value) { Counted("stream.Write").Write(value); }

Value FailingVariantStream::Read() { return Counted("stream.Read").Read(); }

std::shared_ptr<NamedValueSet> FailingLayerMetadata::ReadDocument() {
  return Wrap<FailingNamedValueSet>(Counted("metadata.ReadDocument").ReadDocument());
}

void FailingLayerMetadata::WriteDocument(const std::shared_ptr<NamedValueSet>& document) {
  const auto wrapped = std::dynamic_pointer_cast<FailingNamedValueSet>(document);
  Counted("metadata.WriteDocument").WriteDocument(wrapped ? wrapped->Inner() : document);
}

Value FailingDatasetManager::Initialize() {
  return Counted("dataset_manager.Initialize").Initialize();
}

std::string FailingResourceFinder::FindString(std::string_view id) {
  return Counted("resources.FindString", id).FindString(id);
}

std::shared_ptr<DatasetManager> FailingSiblings::CreateDatasetManager() {
  return Wrap<FailingDatasetManager>(
      Counted("siblings.CreateDatasetManager").CreateDatasetManager());
}

std::shared_ptr<ResourceFinder> FailingSiblings::CreateResourceFinder() {
  return Wrap<FailingResourceFinder>(
      Counted("siblings.CreateResourceFinder").CreateResourceFinder());
}

Value FailingPropertySet::GetProperty(std::string_view name) {
  return Counted("properties.GetProperty", name).GetProperty(name);
}

void FailingPropertySet::SetProperty(std::string_view name, const Value& value) {
  Counted("properties.SetProperty", name).SetProperty(name, value);
}

std::shared_ptr<HostPropertySet> FailingHost::CurrentState() {
  return Wrap<FailingPropertySet>(Counted("host.CurrentState").CurrentState());
}

std::shared_ptr<HostPropertySet> FailingHost::Settings() {
  return Wrap<FailingPropertySet>(Counted("host.Settings").Settings());
}

}  // namespace kvdm
