#include "tests/conformance/world.h"

#include <kvdm/platform/portable/properties_host.h>
#include <kvdm/platform/portable/variant_list.h>

namespace kvdm::conformance {
namespace {

constexpr char kCatalogue[] = "StudyAreaCollection";

class CountedProperties : public PropertySetMap {
 public:
  Value GetProperty(std::string_view name) override {
    ++reads;
    return PropertySetMap::GetProperty(name);
  }

  int reads = 0;
};

std::string InRoot(std::string_view tag, std::string_view content) {
  const std::string name(tag);
  return "<" + name + ">" + std::string(content) + "</" + name + ">";
}

// What stands inside the root `tag` of `text`.
std::string Inside(std::string_view tag, const std::string& text) {
  const std::string name(tag);
  if (text.ends_with("<" + name + "/>\r\n")) return "";
  const auto start = text.find("<" + name + ">");
  const auto end = text.rfind("</" + name + ">\r\n");
  if (start == std::string::npos || end == std::string::npos) return "no " + name + ": " + text;
  const auto first = start + name.size() + 2;
  return text.substr(first, end - first);
}

}  // namespace

class World::TestHost : public Host {
 public:
  std::shared_ptr<HostPropertySet> CurrentState() override { return state; }
  std::shared_ptr<HostPropertySet> Settings() override { return settings; }

  std::shared_ptr<CountedProperties> state = std::make_shared<CountedProperties>();
  std::shared_ptr<HostPropertySet> settings = std::make_shared<PropertySetMap>();
};

std::string Guid(int number) {
  return "{00000000-0000-4000-8000-00000000000" + std::to_string(number) + "}";
}

std::string TooLong() { return std::string(10'000'001, 'x'); }

std::ostream& operator<<(std::ostream& out, const Message& message) {
  return out << message.caption << ": " << message.text << " (" << message.style << ")";
}

World::World() : services_(MakeServices()), host_(std::make_shared<TestHost>()) {}
World::~World() = default;

std::shared_ptr<IKVDataManager> World::Manager() {
  if (!manager_) manager_ = New<IKVDataManager>("KVDataManager");
  return manager_;
}

void World::Initialize() { Query<IKVDMInitialize>(Manager())->DMInitialize(GetHost()); }

std::shared_ptr<Host> World::GetHost() { return host_; }

void World::SetSetting(std::string_view name, const Value& value) {
  host_->settings->SetProperty(name, value);
}

void World::SetState(std::string_view name, const Value& value) {
  host_->state->SetProperty(name, value);
}

Value World::State(std::string_view name) { return host_->state->GetProperty(name); }

int World::StateReads() { return host_->state->reads; }

void World::LoseState() { host_->state = nullptr; }

void World::Load(std::string_view content) {
  LoadText("<?xml version='1.0' encoding='utf-8'?>" + InRoot("KVDATACOLLECTION", content));
}

void World::LoadText(const Value& value) {
  Query<IPersistVariant>(Manager())->Load(std::make_shared<VariantList>(std::vector<Value>{value}));
}

std::string World::SavedText() {
  const auto stream = std::make_shared<VariantList>();
  Query<IPersistVariant>(Manager())->Save(stream);
  return ToText(stream->Values().at(0));
}

std::string World::Metadata() { return Inside("KVDATACOLLECTION", SavedText()); }

std::string World::StudyAreas() {
  Manager()->Flush();
  return Inside("STUDYAREACOLLECTION", RegistryText(kCatalogue).value_or("nothing"));
}

void World::PutStudyAreas(std::string_view content) {
  PutRegistryText(kCatalogue, InRoot("STUDYAREACOLLECTION", content));
}

std::vector<std::string> World::Texts() {
  std::vector<std::string> texts;
  for (const auto& message : Messages()) texts.push_back(message.text);
  return texts;
}

OpenWorld::OpenWorld(std::string_view study_areas) {
  PutStudyAreas(study_areas);
  SetSetting("VELKKVDirectory", R"(D:\Data)");
  Initialize();
}

}  // namespace kvdm::conformance
