#include "datamanager/kv_data_manager.h"

#include <algorithm>

#include <kvdm/datamanager/component.h>

#include "platform/file_names.h"
#include "platform/portable/shared_catalogue.h"
#include "util/guard.h"
#include "util/kvdm_utils.h"
#include "util/messages.h"
#include "util/names.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

constexpr char kDefaultWorkingDirectory[] = "\\My Output Data";
constexpr char kWrongWorkingDirectoryText[] = "101";
constexpr char kComponentName[] = "KVDM";

// A number as text, with a blank in place of the sign when it is not negative.
std::string NumberText(std::int32_t number) {
  return (number < 0 ? "" : " ") + std::to_string(number);
}

std::string WithoutTrailingBackslash(std::string path) {
  if (path.ends_with('\\')) path.pop_back();
  return path;
}

}  // namespace

KVDataManager::KVDataManager(Platform platform) : platform_(std::move(platform)) {
  shared_ = std::make_shared<SharedCatalogue>(
      platform_.registry, platform_.xml_parser, platform_.log,
      RegistryAddress{RegistryRoot::kLocalMachine, kRegistryKey, kStudyAreaCollectionValue});
  platform_.registry = shared_;
  Start();
}

void KVDataManager::KVDMHandleError(std::string_view message) {
  guard::Quiet(ErrorLog(), [&] {
    platform_.message_box->Show(message, messages::kCaption, MessageStyle::kExclamation);
  });
}

DataManagerRef KVDataManager::Reference() { return {shared_from_this(), this}; }

void KVDataManager::Start() {
  guard::Trapped(
      ErrorLog(), messages::kPresetDirectory,
      [&] {
        KVDMHandleError(messages::kPresetDirectory);
        preset_directory_.clear();
        presets_available_ = false;
      },
      [&] {
        preset_directory_ =
            ToText(ReadRegistryString(*platform_.registry, RegistryRoot::kLocalMachine,
                                      kRegistryKey, kPresetDataDirectoryValue));
        guard::Skipping(ErrorLog(), [&] { ReadCatalogue(); });
        workspace_.metadata = NewMetadataDocument();
        presets_ = LoadPresets(platform_, preset_directory_);
        presets_available_ = true;
        dataset_manager_ = platform_.siblings->CreateDatasetManager();
        static_cast<void>(Required(dataset_manager_).Initialize());
      });
}

void KVDataManager::ReadCatalogue() {
  saved_stamp_.clear();
  const auto text = ToText(ReadRegistryString(*platform_.registry, RegistryRoot::kLocalMachine,
                                              kRegistryKey, kStudyAreaCollectionValue));
  catalogue_ = text.empty() ? NewCatalogue() : ParseDocument(*platform_.xml_parser, text);
}

void KVDataManager::DMInitialize(const std::shared_ptr<Host>& host) {
  guard::Reported(reporter_, messages::kWorkingDirectorySettings, [&] {
    host_ = host;
    resources_ = platform_.siblings->CreateResourceFinder();
    if (host_) SettleWorkingDirectory();
  });
}

void KVDataManager::SettleWorkingDirectory() {
  // The host may start anew while it is asked.
  const auto host = host_;
  const auto resources = resources_;
  auto wanted = ToText(Required(host->Settings()).GetProperty(kWorkingDirectorySetting));
  if (wanted.empty()) wanted = platform_.files->SystemDrive() + kDefaultWorkingDirectory;
  SetWorkingDirectory(wanted);
  const auto wanted_folder = WithoutTrailingBackslash(platform_.files->FullPath(wanted));
  const auto held_folder =
      WithoutTrailingBackslash(platform_.files->FullPath(workspace_.directory));
  if (SameName(wanted_folder, held_folder)) return;
  platform_.message_box->Show(Required(resources).FindString(kWrongWorkingDirectoryText),
                              kComponentName, MessageStyle::kPlain);
  workspace_.directory.clear();
}

void KVDataManager::SetWorkingDirectory(std::string_view path) {
  guard::Trapped(
      ErrorLog(), messages::kInvalidWorkingDirectory,
      [&] {
        KVDMHandleError(messages::kInvalidWorkingDirectory);
        workspace_.metadata_valid = false;
      },
      [&] {
        const auto folder = CollapseBackslashes(std::string(path) + "\\");
        workspace_.metadata_valid = true;
        if (!platform_.files->FolderExists(folder) && !CreateWorkingDirectoryStructure(folder)) {
          KVDMHandleError(messages::kInvalidWorkingDirectorySelected);
        }
        workspace_.directory = folder;
        CleanTemp();
      });
}

bool KVDataManager::CreateWorkingDirectoryStructure(const std::string& path) {
  return guard::Reported(reporter_, messages::kWorkingDirectoryStructure, [&] {
    auto& files = *platform_.files;
    if (!files.FolderExists(path)) {
      files.CreateFolder(path);
      for (const auto* name : {sDefaultDirNames::kCustLayers, sDefaultDirNames::kStoreLayers,
                               sDefaultDirNames::kKelvaroTemp}) {
        files.CreateFolder(path + "\\" + name);
      }
      files.HideFolder(path + "\\" + sDefaultDirNames::kKelvaroTemp);
    }
    workspace_.metadata = NewMetadataDocument();
    return true;
  });
}

bool KVDataManager::Flush() {
  guard::Handled(
      ErrorLog(),
      [&](const RuntimeError& error) {
        KVDMHandleError(messages::kSaving + NumberText(error.number()) + error.what());
      },
      [&] {
        if (!IsSaved()) SaveCatalogue();
      });
  if (listener_ && !is_told_) static_cast<void>(ChangedByOthers());
  return false;
}

bool KVDataManager::IsSaved() const {
  return !saved_stamp_.empty() && saved_changes_ == catalogue_->Changes() &&
         saved_stamp_ == platform_.registry->Stamp();
}

void KVDataManager::SaveCatalogue() {
  auto& registry = *platform_.registry;
  saved_stamp_.clear();
  const auto changes = catalogue_->Changes();
  const auto text = catalogue_->Xml([&](char32_t character) { return registry.Holds(character); });
  if (!WriteRegistryString(registry, RegistryRoot::kLocalMachine, kRegistryKey,
                           kStudyAreaCollectionValue, text)) {
    return;
  }
  saved_changes_ = changes;
  saved_stamp_ = registry.Stamp();
}

std::string KVDataManager::GenerateFolderName(std::string_view parent, std::string_view prefix) {
  return guard::Reported(reporter_, messages::kNewDirName, [&] {
    if (!workspace_.metadata_valid) return std::string();
    return platform_.files->FreeFolderName(workspace_.directory + "\\" + std::string(parent),
                                           prefix);
  });
}

std::shared_ptr<Identifier> KVDataManager::ID() {
  return guard::Quiet(ErrorLog(), [&] {
    auto identifier = platform_.gis_core->CreateIdentifier();
    Required(identifier).PutValue(kDataManagerClass);
    return identifier;
  });
}

void KVDataManager::Save(const std::shared_ptr<VariantStream>& stream) {
  guard::Quiet(ErrorLog(), [&] {
    Required(stream).Write(workspace_.metadata ? workspace_.metadata->Xml() : std::string());
    Flush();
  });
}

void KVDataManager::Load(const std::shared_ptr<VariantStream>& stream) {
  guard::Quiet(ErrorLog(), [&] {
    const auto value = Required(stream).Read();
    if (!value.IsText()) return;
    workspace_.metadata = ParseDocument(*platform_.xml_parser, ToText(value));
    if (!workspace_.metadata->DocumentElement()) workspace_.metadata = nullptr;
  });
}

}  // namespace kvdm
