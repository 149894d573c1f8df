// The root object: the three documents, the working directory and the link to the host.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/kvdm.h>

#include "datamanager/area_registry.h"
#include "datamanager/documents.h"
#include "items/friends.h"

namespace kvdm {

class SharedCatalogue;
struct CatalogueReading;

// Every operation traps its errors, shows a message and returns its neutral result.
class KVDataManager final : public IKVDataManager,
                            public IKVDMInitialize,
                            public IPersistVariant,
                            public IKVCatalogue,
                            private DataManagerFriend {
 public:
  // Reads the registry and the preset catalogue, and starts a fresh metadata document.
  explicit KVDataManager(Platform platform);

  std::string WorkingDirectory() override { return workspace_.directory; }
  void SetWorkingDirectory(std::string_view path) override;
  std::shared_ptr<DatasetManager> GetDatasetManager() override { return dataset_manager_; }
  bool Flush() override;
  std::string TmpFilePath() override;
  void CleanTemp() override;
  std::shared_ptr<IKVAnalysisCollection> AnalysisCollection() override;
  std::shared_ptr<IKVDataCollection> DataCollection() override;
  std::shared_ptr<IKVStudyAreaCollection> StudyAreaCollection() override;
  std::shared_ptr<IKVTablesManager> TablesManager() override;
  std::shared_ptr<IKVCustLayerCollection> CustLayerCollection() override;
  std::shared_ptr<IKVStoreLayerCollection> StoreLayerCollection() override;
  NameListRef PDataList() override;
  std::string GetPDataFile(std::string_view name) override;

  void DMInitialize(const std::shared_ptr<Host>& host) override;

  std::shared_ptr<Identifier> ID() override;
  void Load(const std::shared_ptr<VariantStream>& stream) override;
  void Save(const std::shared_ptr<VariantStream>& stream) override;

  bool Reload() override;
  bool ChangedByOthers() override;
  void Notify(const std::shared_ptr<CatalogueListener>& listener) override;

  // For the other classes of the component, and for hosts that are built with it.
  std::shared_ptr<Host> HostObject() override { return host_; }
  void KVDMHandleError(std::string_view message) override;
  std::shared_ptr<ResourceFinder> Resources() override { return resources_; }
  [[nodiscard]] Log* ErrorLog() const override { return platform_.log.get(); }
  [[nodiscard]] const Platform& Services() const override { return platform_; }
  void Follow(const std::shared_ptr<CatalogueView>& view) override;
  DataManagerRef Reference() override;
  // Creates the working directory's folders when it is missing, and starts the metadata afresh in
  // any case.
  bool CreateWorkingDirectoryStructure(const std::string& path);
  std::string GenerateFolderName(std::string_view parent, std::string_view prefix) override;
  // The identifiers of the preset data items; Nothing after a failed start-up.
  NameListRef PDataGUIDList();
  std::string GetPDataFileByGUID(std::string_view guid);
  // Grows with each change of the catalogue and the metadata.
  [[nodiscard]] std::uint64_t Changes() const {
    return catalogue_->Changes() + (workspace_.metadata ? workspace_.metadata->Changes() : 0);
  }
  // The study areas and layers that stand directly in the metadata.
  AreaRegistry& Areas() { return areas_; }

 private:
  void Start();
  void ReadCatalogue();
  // Whether the catalogue is as this object saved it last, and nobody has touched the registry
  // since.
  [[nodiscard]] bool IsSaved() const;
  void SaveCatalogue();
  // Puts `catalogue` in place of the one that is there; every view that lives gets its element
  // there.
  void ReplaceCatalogue(DocumentRef catalogue, CatalogueReading reading);
  // Tells the listener, if it was not told already.
  void TellOfChanges();
  void SettleWorkingDirectory();
  [[nodiscard]] std::string TempFolder() const;
  NameListRef ListPresets(const char* attribute);
  std::string PresetFile(const char* attribute, std::string_view key);
  // The collection element `tag` of the metadata, created when it is missing.
  xml::Element CollectionElement(const char* tag);
  template <class Collection>
  std::shared_ptr<Collection> BindCollection(xml::Element element);

  Platform platform_;
  std::shared_ptr<SharedCatalogue> shared_;  // the platform's registry
  Reporter reporter_{ReportStyle::kShown, this};
  Workspace workspace_;
  AreaRegistry areas_{platform_, workspace_, *this};
  std::string preset_directory_;
  bool presets_available_ = false;
  DocumentRef catalogue_ = std::make_shared<xml::Document>();
  std::uint64_t saved_changes_ = 0;
  std::string saved_stamp_;  // of the registry when the catalogue was saved; "" for never
  std::vector<std::weak_ptr<CatalogueView>> views_;
  std::size_t most_views_ = 64;  // at which those that are gone are forgotten
  std::shared_ptr<CatalogueListener> listener_;
  bool is_told_ = false;
  DocumentRef presets_ = std::make_shared<xml::Document>();
  std::shared_ptr<DatasetManager> dataset_manager_;
  std::shared_ptr<ResourceFinder> resources_;
  std::shared_ptr<Host> host_;
};

}  // namespace kvdm
