#include "tests/conformance/world.h"

#include <algorithm>
#include <map>

#include "datamanager/component.h"
#include "platform/error.h"
#include "platform/memory/memory_platform.h"
#include "platform/portable/properties_host.h"
#include "platform/portable/variant_list.h"

namespace kvdm::conformance {

namespace {

constexpr char kKey[] = R"(Software\Velk\Kelvaro)";
constexpr char kCatalogue[] = "StudyAreaCollection";
constexpr auto kRoot = RegistryRoot::kLocalMachine;

class BentRegistry : public MemoryRegistry {
 public:
  bool WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                 std::string_view text) override {
    if (failure != 0) throw RuntimeError(failure);
    return MemoryRegistry::WriteText(root, key, name, text);
  }

  int failure = 0;
};

class BentFiles : public MemoryFileSystem {
 public:
  bool FolderExists(std::string_view path) override {
    return (!full.empty() && path.starts_with(full)) || MemoryFileSystem::FolderExists(path);
  }

  std::string FullPath(std::string_view path) override {
    const auto found = full_paths.find(path);
    return found == full_paths.end() ? MemoryFileSystem::FullPath(path) : found->second;
  }

  std::string full;
  std::map<std::string, std::string, std::less<>> full_paths;
};

class CountedDatasetManager : public DatasetManager {
 public:
  explicit CountedDatasetManager(int& count) : count_(count) {}
  Value Initialize() override { return ++count_; }

 private:
  int& count_;
};

class NumberedTexts : public ResourceFinder {
 public:
  std::string FindString(std::string_view id) override { return "Text " + std::string(id); }
};

class TestSiblings : public Siblings {
 public:
  std::shared_ptr<DatasetManager> CreateDatasetManager() override {
    if (lost) throw RuntimeError(kCannotCreateObject);
    return std::make_shared<CountedDatasetManager>(initialized);
  }
  std::shared_ptr<ResourceFinder> CreateResourceFinder() override {
    return std::make_shared<NumberedTexts>();
  }

  bool lost = false;
  int initialized = 0;
};

class CountedProperties : public PropertySetMap {
 public:
  Value GetProperty(std::string_view name) override {
    ++reads;
    return PropertySetMap::GetProperty(name);
  }

  int reads = 0;
};

class TestHost : public Host {
 public:
  std::shared_ptr<HostPropertySet> CurrentState() override { return state; }
  std::shared_ptr<HostPropertySet> Settings() override { return settings; }

  std::shared_ptr<CountedProperties> state = std::make_shared<CountedProperties>();
  std::shared_ptr<HostPropertySet> settings = std::make_shared<PropertySetMap>();
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

struct World::Services {
  MemoryPlatform platform;
  std::shared_ptr<BentFiles> files = std::make_shared<BentFiles>();
  std::shared_ptr<BentRegistry> registry = std::make_shared<BentRegistry>();
  std::shared_ptr<TestSiblings> siblings = std::make_shared<TestSiblings>();
  std::shared_ptr<TestHost> host = std::make_shared<TestHost>();

  [[nodiscard]] Platform Bundle() const {
    Platform bundle = platform.Bundle();
    bundle.files = files;
    bundle.registry = registry;
    bundle.siblings = siblings;
    return bundle;
  }
};

std::string Guid(int number) {
  return "{00000000-0000-4000-8000-00000000000" + std::to_string(number) + "}";
}

std::string TooLong() { return std::string(10'000'001, 'x'); }

std::ostream& operator<<(std::ostream& out, const Message& message) {
  return out << message.caption << ": " << message.text << " (" << message.style << ")";
}

World::World() : services_(std::make_unique<Services>()) {}
World::~World() = default;

std::shared_ptr<Unknown> World::New(std::string_view class_name) {
  return CreateObject("KVDM." + std::string(class_name), services_->Bundle());
}

std::shared_ptr<IKVDataManager> World::Manager() {
  if (!manager_) manager_ = New<IKVDataManager>("KVDataManager");
  return manager_;
}

void World::Initialize() { Query<IKVDMInitialize>(Manager())->DMInitialize(GetHost()); }

std::shared_ptr<Host> World::GetHost() { return services_->host; }

void World::SetSetting(std::string_view name, const Value& value) {
  services_->host->settings->SetProperty(name, value);
}

void World::SetState(std::string_view name, const Value& value) {
  services_->host->state->SetProperty(name, value);
}

Value World::State(std::string_view name) { return services_->host->state->GetProperty(name); }

int World::StateReads() { return services_->host->state->reads; }

void World::LoseState() { services_->host->state = nullptr; }

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

std::optional<std::string> World::RegistryText(std::string_view name) {
  const auto value = services_->registry->Read(kRoot, kKey, name);
  if (!value || value->type != RegistryType::kText) return std::nullopt;
  return value->data.substr(0, value->data.find('\0'));
}

void World::PutRegistryText(std::string_view name, std::string_view text) {
  services_->registry->Put(kRoot, kKey, name, RegistryType::kText, text);
}

void World::PutRegistryNumber(std::string_view name, int number) {
  const std::string bytes = {static_cast<char>(number), 0, 0, 0};
  services_->registry->Put(kRoot, kKey, name, RegistryType::kNumber, bytes);
}

void World::LockRegistry() { services_->registry->SetWritable(false); }
void World::BreakRegistry(int number) { services_->registry->failure = number; }

void World::AddFolder(std::string_view path) { services_->files->AddFolder(path); }

void World::AddFile(std::string_view path, std::string_view content) {
  services_->files->AddFile(path, content);
}

void World::SetReadOnly(std::string_view path) {
  services_->files->SetAttributes(path, kReadOnlyAttribute);
}

void World::SetHidden(std::string_view path) {
  services_->files->SetAttributes(path, kHiddenAttribute);
}

void World::Remove(std::string_view path) { services_->files->RemoveTree(path); }
void World::LockFolder(std::string_view path) { services_->files->RefuseWrites(path); }
bool World::FolderExists(std::string_view path) { return services_->files->FolderExists(path); }

void World::Fill(std::string_view path) { services_->files->full = path; }

bool World::IsHidden(std::string_view path) {
  if (!FolderExists(path)) return false;
  const auto separator = path.rfind('\\');
  const auto folder = services_->files->OpenFolder(path.substr(0, separator + 1));
  const auto seen = folder->Entries();
  return std::find(seen.begin(), seen.end(), path.substr(separator + 1)) == seen.end();
}

std::vector<std::string> World::Tree(std::string_view path) { return services_->files->Tree(path); }

void World::SetFullPath(std::string_view path, std::string_view full) {
  services_->files->full_paths[std::string(path)] = full;
}

void World::LoseDatasetManager() { services_->siblings->lost = true; }
int World::DatasetManagersInitialized() { return services_->siblings->initialized; }

std::vector<Message> World::Messages() {
  std::vector<Message> messages;
  for (const auto& shown : services_->platform.box->Messages()) {
    messages.push_back({shown.text, shown.caption, static_cast<int>(shown.style)});
  }
  return messages;
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
