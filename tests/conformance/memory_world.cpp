// The component in memory: its services are the test's.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include <kvdm/datamanager/component.h>
#include <kvdm/platform/error.h>

#include "platform/memory/memory_platform.h"
#include "platform/xml/child_index.h"
#include "tests/conformance/results.h"
#include "tests/conformance/world.h"

namespace kvdm::conformance {
namespace {

constexpr char kKey[] = R"(Software\Velk\Kelvaro)";
constexpr auto kMachine = RegistryRoot::kLocalMachine;

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

}  // namespace

const bool kTellsUnsentReports = true;

struct World::Services {
  MemoryPlatform platform;
  std::shared_ptr<BentFiles> files = std::make_shared<BentFiles>();
  std::shared_ptr<BentRegistry> registry = std::make_shared<BentRegistry>();
  std::shared_ptr<TestSiblings> siblings = std::make_shared<TestSiblings>();

  [[nodiscard]] Platform Bundle() const {
    Platform bundle = platform.Bundle();
    bundle.files = files;
    bundle.registry = registry;
    bundle.siblings = siblings;
    return bundle;
  }
};

std::shared_ptr<World::Services> World::MakeServices() { return std::make_shared<Services>(); }

std::shared_ptr<Unknown> World::New(std::string_view class_name) {
  return CreateObject("KVDM." + std::string(class_name), services_->Bundle());
}

std::optional<std::string> World::RegistryText(std::string_view name) {
  const auto value = services_->registry->Read(kMachine, kKey, name);
  if (!value || value->type != RegistryType::kText) return std::nullopt;
  return value->data.substr(0, value->data.find('\0'));
}

void World::PutRegistryText(std::string_view name, std::string_view text) {
  services_->registry->Put(kMachine, kKey, name, RegistryType::kText, text);
}

void World::PutRegistryNumber(std::string_view name, int number) {
  const std::string bytes = {static_cast<char>(number), 0, 0, 0};
  services_->registry->Put(kMachine, kKey, name, RegistryType::kNumber, bytes);
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

}  // namespace kvdm::conformance

// With --indexed, every look-up goes through the index of children, however few there are.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (argc > 1 && argv[1] == std::string_view("--indexed")) kvdm::xml::IndexMoreChildrenThan(0);
  return RUN_ALL_TESTS();
}
