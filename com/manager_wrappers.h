// Wrappers of the data manager.
#pragma once

#include <kvdm/kvdm.h>

#include "com/kvdm.h"
#include "com/object.h"

namespace kvdm::com {

class DataManagerWrapper final : public WrapperOf<::IKVDataManager, IKVDataManager> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP get_WorkingDirectory(BSTR* result) override {
    return Call(&Core::WorkingDirectory, result);
  }
  STDMETHODIMP put_WorkingDirectory(BSTR* path) override {
    return Call(&Core::SetWorkingDirectory, path);
  }
  STDMETHODIMP get_DatasetManager(IUnknown** result) override {
    return Call(&Core::GetDatasetManager, result);
  }
  STDMETHODIMP Flush(VARIANT_BOOL* result) override { return Call(&Core::Flush, result); }
  STDMETHODIMP TmpFilePath(BSTR* result) override { return Call(&Core::TmpFilePath, result); }
  STDMETHODIMP CleanTemp() override { return Call(&Core::CleanTemp); }
  STDMETHODIMP AnalysisCollection(::IKVAnalysisCollection** result) override {
    return Call(&Core::AnalysisCollection, result);
  }
  STDMETHODIMP DataCollection(::IKVDataCollection** result) override {
    return Call(&Core::DataCollection, result);
  }
  STDMETHODIMP StudyAreaCollection(::IKVStudyAreaCollection** result) override {
    return Call(&Core::StudyAreaCollection, result);
  }
  STDMETHODIMP TablesManager(::IKVTablesManager** result) override {
    return Call(&Core::TablesManager, result);
  }
  STDMETHODIMP CustLayerCollection(::IKVCustLayerCollection** result) override {
    return Call(&Core::CustLayerCollection, result);
  }
  STDMETHODIMP StoreLayerCollection(::IKVStoreLayerCollection** result) override {
    return Call(&Core::StoreLayerCollection, result);
  }
  STDMETHODIMP PDataList(::INameList** result) override { return Call(&Core::PDataList, result); }
  STDMETHODIMP GetPDataFile(BSTR* name, BSTR* result) override {
    return Call(&Core::GetPDataFile, name, result);
  }
};

class InitializeWrapper final : public WrapperOf<::IKVDMInitialize, IKVDMInitialize> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP DMInitialize(IUnknown* host) override { return Call(&Core::DMInitialize, host); }
};

class PersistWrapper final : public WrapperOf<::IPersistVariant, IPersistVariant> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP ID(::IIdentifier** result) override { return Call(&Core::ID, result); }
  STDMETHODIMP Load(IUnknown* stream) override { return Call(&Core::Load, stream); }
  STDMETHODIMP Save(IUnknown* stream) override { return Call(&Core::Save, stream); }
};

class CatalogueWrapper final : public WrapperOf<::IKVCatalogue, IKVCatalogue> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP Reload(VARIANT_BOOL* result) override { return Call(&Core::Reload, result); }
  STDMETHODIMP ChangedByOthers(VARIANT_BOOL* result) override {
    return Call(&Core::ChangedByOthers, result);
  }
  STDMETHODIMP Notify(IUnknown* listener) override { return Call(&Core::Notify, listener); }
};

class TablesManagerWrapper final : public WrapperOf<::IKVTablesManager, IKVTablesManager> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP get_TablesDir(BSTR* result) override { return Call(&Core::TablesDir, result); }
  STDMETHODIMP get_FreeTablePath(BSTR* result) override {
    return Call(&Core::FreeTablePath, result);
  }
};

class FileInfoWrapper final : public WrapperOf<::IKVFileInfo, IKVFileInfo> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP get_ParentDirPath(BSTR* result) override {
    return Call(&Core::ParentDirPath, result);
  }
  STDMETHODIMP get_FileName(BSTR* result) override { return Call(&Core::FileName, result); }
  STDMETHODIMP get_FileNameExtension(BSTR* result) override {
    return Call(&Core::FileNameExtension, result);
  }
  STDMETHODIMP get_FullPath(BSTR* result) override { return Call(&Core::FullPath, result); }
  STDMETHODIMP put_FullPath(BSTR* path) override { return Call(&Core::SetFullPath, path); }
};

}  // namespace kvdm::com
