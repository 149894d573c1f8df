// The data manager of the DLL.
#pragma once

#include "tests/boundary/client/call.h"

namespace kvdm::client {

class DataManagerClient final : public ClientOf<IKVDataManager, ::IKVDataManager> {
 public:
  using ClientOf::ClientOf;

  std::string WorkingDirectory() override { return Call(&Abi::get_WorkingDirectory); }
  void SetWorkingDirectory(std::string_view path) override {
    Call(&Abi::put_WorkingDirectory, path);
  }
  // The same again for the same object.
  std::shared_ptr<DatasetManager> GetDatasetManager() override {
    Microsoft::WRL::ComPtr<IUnknown> object;
    Check(TheObject()->get_DatasetManager(&object));
    if (object != dataset_object_) {
      const std::shared_ptr<DatasetManager> manager = DllObject(object);
      dataset_manager_ = manager;
      dataset_object_ = object;
    }
    return dataset_manager_;
  }
  bool Flush() override { return Call(&Abi::Flush); }
  std::string TmpFilePath() override { return Call(&Abi::TmpFilePath); }
  void CleanTemp() override { Call(&Abi::CleanTemp); }
  std::shared_ptr<IKVAnalysisCollection> AnalysisCollection() override {
    return Call(&Abi::AnalysisCollection);
  }
  std::shared_ptr<IKVDataCollection> DataCollection() override {
    return Call(&Abi::DataCollection);
  }
  std::shared_ptr<IKVStudyAreaCollection> StudyAreaCollection() override {
    return Call(&Abi::StudyAreaCollection);
  }
  std::shared_ptr<IKVTablesManager> TablesManager() override { return Call(&Abi::TablesManager); }
  std::shared_ptr<IKVCustLayerCollection> CustLayerCollection() override {
    return Call(&Abi::CustLayerCollection);
  }
  std::shared_ptr<IKVStoreLayerCollection> StoreLayerCollection() override {
    return Call(&Abi::StoreLayerCollection);
  }
  NameListRef PDataList() override { return Call(&Abi::PDataList); }
  std::string GetPDataFile(std::string_view name) override {
    return Call(&Abi::GetPDataFile, name);
  }

 private:
  Microsoft::WRL::ComPtr<IUnknown> dataset_object_;
  std::shared_ptr<DatasetManager> dataset_manager_;
};

class InitializeClient final : public ClientOf<IKVDMInitialize, ::IKVDMInitialize> {
 public:
  using ClientOf::ClientOf;

  void DMInitialize(const std::shared_ptr<Host>& host) override { Call(&Abi::DMInitialize, host); }
};

class PersistClient final : public ClientOf<IPersistVariant, ::IPersistVariant> {
 public:
  using ClientOf::ClientOf;

  std::shared_ptr<Identifier> ID() override { return Call(&Abi::ID); }
  void Load(const std::shared_ptr<VariantStream>& stream) override { Call(&Abi::Load, stream); }
  void Save(const std::shared_ptr<VariantStream>& stream) override { Call(&Abi::Save, stream); }
};

class CatalogueClient final : public ClientOf<IKVCatalogue, ::IKVCatalogue> {
 public:
  using ClientOf::ClientOf;

  bool Reload() override { return Call(&Abi::Reload); }
  bool ChangedByOthers() override { return Call(&Abi::ChangedByOthers); }
  void Notify(const std::shared_ptr<CatalogueListener>& listener) override {
    Call(&Abi::Notify, listener);
  }
};

class TablesManagerClient final : public ClientOf<IKVTablesManager, ::IKVTablesManager> {
 public:
  using ClientOf::ClientOf;

  std::string TablesDir() override { return Call(&Abi::get_TablesDir); }
  std::string FreeTablePath() override { return Call(&Abi::get_FreeTablePath); }
};

class FileInfoClient final : public ClientOf<IKVFileInfo, ::IKVFileInfo> {
 public:
  using ClientOf::ClientOf;

  std::string ParentDirPath() override { return Call(&Abi::get_ParentDirPath); }
  std::string FileName() override { return Call(&Abi::get_FileName); }
  std::string FileNameExtension() override { return Call(&Abi::get_FileNameExtension); }
  std::string FullPath() override { return Call(&Abi::get_FullPath); }
  void SetFullPath(std::string_view path) override { Call(&Abi::put_FullPath, path); }
};

}  // namespace kvdm::client
