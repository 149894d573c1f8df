// The component as its DLL: the services are the system's, and the worlds that live at one time
// share them.
#include <optional>

#include <kvdm/datamanager/component.h>

#include "platform/file_names.h"
#include "platform/windows/text.h"
#include "platform/windows/windows_registry.h"
#include "tests/boundary/client/disk.h"
#include "tests/boundary/client/dll.h"
#include "tests/boundary/client/pinned_system.h"
#include "tests/boundary/client/sibling_classes.h"
#include "tests/boundary/conformance/bent_files.h"
#include "tests/conformance/results.h"
#include "tests/conformance/world.h"
#include "tests/platform/windows/com_environment.h"
#include "tests/platform/windows/registry_sandbox.h"

namespace kvdm::conformance {
namespace {

constexpr char kKey[] = R"(Software\Velk\Kelvaro)";
constexpr auto kRoot = RegistryRoot::kLocalMachine;

std::int32_t g_registry_failure = 0;

// Nothing in the system fails as the test wants it, so the failure is made on the way there.
LSTATUS WINAPI FailToSetValue(HKEY, LPCSTR, DWORD, DWORD, const BYTE*, DWORD) {
  throw RuntimeError(g_registry_failure);
}

LSTATUS WINAPI RefuseToCreateKey(HKEY, LPCSTR, DWORD, LPSTR, DWORD, REGSAM, LPSECURITY_ATTRIBUTES,
                                 PHKEY, LPDWORD) {
  return ERROR_ACCESS_DENIED;
}

// Whoever lets go of all objects lets go of the DLL.
class NothingLeft : public testing::Environment {
 public:
  void TearDown() override { EXPECT_FALSE(client::IsDllInUse()); }
};
[[maybe_unused]] testing::Environment* const nothing_left =
    testing::AddGlobalTestEnvironment(new NothingLeft);

}  // namespace

// An error has a number, a source and a description in COM, and nothing else.
const bool kTellsUnsentReports = false;

struct World::Services {
  client::Disk disk;
  client::SiblingClasses siblings{[](const std::string& number) { return "Text " + number; }};
  RegistrySandbox registry;
  std::vector<Message> messages;
  client::PinnedSystem pinned{[this](auto text, auto caption, int style) {
    messages.push_back({text, caption, style});
  }};
  std::optional<client::ImportHook> registry_lock;
  std::optional<client::ImportHook> registry_failure;
  std::optional<LockedFolder> locked_folder;
  std::optional<FullFolder> full_folder;
  std::optional<UnsteadyFolder> unsteady_folder;
};

std::shared_ptr<World::Services> World::MakeServices() {
  static std::weak_ptr<Services> in_use;
  auto services = in_use.lock();
  if (!services) in_use = services = std::make_shared<Services>();
  return services;
}

std::shared_ptr<Unknown> World::New(std::string_view class_name) {
  return CreateObject("KVDM." + std::string(class_name), {});
}

std::optional<std::string> World::RegistryText(std::string_view name) {
  const auto key = RegistryKey::Open(kRoot, kKey);
  const auto value = key ? key->ReadAnsi(name) : std::nullopt;
  if (!value || value->type != REG_SZ) return std::nullopt;
  return FromAnsi(value->bytes.substr(0, value->bytes.find('\0')));
}

void World::PutRegistryText(std::string_view name, std::string_view text) {
  const std::string bytes = ToAnsi(text);
  RegistryKey::Create(kRoot, kKey).WriteAnsi(name, bytes);
}

void World::PutRegistryNumber(std::string_view name, int number) {
  const std::string bytes = {static_cast<char>(number), 0, 0, 0};
  RegistryKey::Create(kRoot, kKey).Write(name, {REG_DWORD, bytes});
}

void World::LockRegistry() {
  services_->registry_lock.emplace(client::Dll(), "advapi32.dll", "RegCreateKeyExA",
                                   &RefuseToCreateKey);
}

void World::BreakRegistry(int number) {
  g_registry_failure = number;
  services_->registry_failure.emplace(client::Dll(), "advapi32.dll", "RegSetValueExA",
                                      &FailToSetValue);
}

void World::AddFolder(std::string_view path) { services_->disk.AddFolder(path); }

void World::AddFile(std::string_view path, std::string_view content) {
  services_->disk.AddFile(path, content);
}

void World::SetReadOnly(std::string_view path) {
  services_->disk.SetAttributes(path, FILE_ATTRIBUTE_READONLY);
}

void World::SetHidden(std::string_view path) {
  services_->disk.SetAttributes(path, FILE_ATTRIBUTE_HIDDEN);
}

void World::Remove(std::string_view path) { services_->disk.Remove(path); }
void World::LockFolder(std::string_view path) { services_->locked_folder.emplace(path); }
bool World::FolderExists(std::string_view path) { return services_->disk.FolderExists(path); }

void World::Fill(std::string_view path) {
  AddFolder(path);
  services_->full_folder.emplace(path);
}

bool World::IsHidden(std::string_view path) { return services_->disk.IsHidden(path); }
std::vector<std::string> World::Tree(std::string_view path) { return services_->disk.Tree(path); }

// Here the full path of a folder is its path, with each name as it really is. That can differ from
// the path by letter case or by dots at the end, so a folder elsewhere is one that has such a dot
// whenever the component looks a second time.
void World::SetFullPath(std::string_view path, std::string_view full) {
  const std::string asked = ResolvePath(SplitPath(path), {})->Text();
  const std::string answered = ResolvePath(SplitPath(full), {})->Text();
  if (SameName(asked, answered)) return AddFolder(answered);
  AddFolder(asked);
  AddFolder(asked + ".");
  services_->unsteady_folder.emplace(asked);
}

void World::LoseDatasetManager() { services_->siblings.LoseDatasetManager(); }
int World::DatasetManagersInitialized() { return services_->siblings.InitializedCount(); }
std::vector<Message> World::Messages() { return services_->messages; }

}  // namespace kvdm::conformance
