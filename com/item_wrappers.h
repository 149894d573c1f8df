// Wrappers of analyses, layers and data items.
#pragma once

#include <kvdm/datamanager/analyses.h>
#include <kvdm/datamanager/data_items.h>
#include <kvdm/datamanager/layers.h>

#include "com/kvdm.h"
#include "com/object.h"

namespace kvdm::com {

template <class Abi, class CoreInterface>
class ItemWrapper : public WrapperOf<Abi, CoreInterface> {
 public:
  using Core = CoreInterface;
  using WrapperOf<Abi, CoreInterface>::WrapperOf;

  STDMETHODIMP get_Name(BSTR* result) override { return this->Call(&Core::Name, result); }
  STDMETHODIMP put_Name(BSTR* name) override { return this->Call(&Core::SetName, name); }
  STDMETHODIMP get_LayerFile(BSTR* result) override { return this->Call(&Core::LayerFile, result); }
  STDMETHODIMP put_LayerFile(BSTR* path) override { return this->Call(&Core::SetLayerFile, path); }
  STDMETHODIMP SetParameter(BSTR* name, BSTR* value, VARIANT_BOOL* result) override {
    return this->Call(&Core::SetParameter, name, value, result);
  }
  STDMETHODIMP GetParameter(BSTR* name, BSTR* result) override {
    return this->Call(&Core::GetParameter, name, result);
  }
  STDMETHODIMP ParametersList(::INameList** result) override {
    return this->Call(&Core::ParametersList, result);
  }
  STDMETHODIMP ClearParametersList(VARIANT_BOOL* result) override {
    return this->Call(&Core::ClearParametersList, result);
  }
};

template <class Abi, class CoreInterface>
class LayerWrapper : public ItemWrapper<Abi, CoreInterface> {
 public:
  using Core = CoreInterface;
  using ItemWrapper<Abi, CoreInterface>::ItemWrapper;

  STDMETHODIMP get_IsInternalData(VARIANT_BOOL* result) override {
    return this->Call(&Core::IsInternalData, result);
  }
  STDMETHODIMP put_IsInternalData(VARIANT_BOOL internal) override {
    return this->Call(&Core::SetIsInternalData, internal);
  }
  STDMETHODIMP get_NameField(BSTR* result) override { return this->Call(&Core::NameField, result); }
  STDMETHODIMP put_NameField(BSTR* field) override {
    return this->Call(&Core::SetNameField, field);
  }
  STDMETHODIMP get_IDField(BSTR* result) override { return this->Call(&Core::IDField, result); }
  STDMETHODIMP put_IDField(BSTR* field) override { return this->Call(&Core::SetIDField, field); }
  STDMETHODIMP get_CreationTime(BSTR* result) override {
    return this->Call(&Core::CreationTime, result);
  }
  STDMETHODIMP put_CreationTime(BSTR* time) override {
    return this->Call(&Core::SetCreationTime, time);
  }
  STDMETHODIMP get_StudyAreaName(BSTR* result) override {
    return this->Call(&Core::StudyAreaName, result);
  }
  STDMETHODIMP put_StudyAreaName(BSTR* name) override {
    return this->Call(&Core::SetStudyAreaName, name);
  }
  STDMETHODIMP get_Comments(BSTR* result) override { return this->Call(&Core::Comments, result); }
  STDMETHODIMP put_Comments(BSTR* comments) override {
    return this->Call(&Core::SetComments, comments);
  }
  STDMETHODIMP get_GUID(BSTR* result) override { return this->Call(&Core::GUID, result); }
};

class AnalysisWrapper final : public ItemWrapper<::IKVAnalysis, IKVAnalysis> {
 public:
  using ItemWrapper::ItemWrapper;

  STDMETHODIMP get_Comments(BSTR* result) override { return Call(&Core::Comments, result); }
  STDMETHODIMP put_Comments(BSTR* comments) override { return Call(&Core::SetComments, comments); }
  STDMETHODIMP get_CreationTime(BSTR* result) override { return Call(&Core::CreationTime, result); }
  STDMETHODIMP put_CreationTime(BSTR* time) override { return Call(&Core::SetCreationTime, time); }
  STDMETHODIMP get_AnalysisDir(BSTR* result) override { return Call(&Core::AnalysisDir, result); }
  STDMETHODIMP get_AnalysisGUID(BSTR* result) override { return Call(&Core::AnalysisGUID, result); }
  STDMETHODIMP WriteToPropertySet(IUnknown** set, VARIANT_BOOL* result) override {
    return Call(&Core::WriteToPropertySet, set, result);
  }
  STDMETHODIMP ReadFromPropertySet(IUnknown* set, VARIANT_BOOL* result) override {
    return Call(&Core::ReadFromPropertySet, set, result);
  }
};

class CustLayerWrapper final : public LayerWrapper<::IKVCustLayer, IKVCustLayer> {
 public:
  using LayerWrapper::LayerWrapper;

  STDMETHODIMP get_LinkField(BSTR* result) override { return Call(&Core::LinkField, result); }
  STDMETHODIMP put_LinkField(BSTR* field) override { return Call(&Core::SetLinkField, field); }
};

class StoreLayerWrapper final : public LayerWrapper<::IKVStoreLayer, IKVStoreLayer> {
 public:
  using LayerWrapper::LayerWrapper;
};

class DataItemWrapper final : public ItemWrapper<::IKVDataItem, IKVDataItem> {
 public:
  using ItemWrapper::ItemWrapper;

  STDMETHODIMP get_AdditionalInfo(BSTR* result) override {
    return Call(&Core::AdditionalInfo, result);
  }
  STDMETHODIMP put_AdditionalInfo(BSTR* info) override {
    return Call(&Core::SetAdditionalInfo, info);
  }
  STDMETHODIMP get_GUID(BSTR* result) override { return Call(&Core::GUID, result); }
};

class LayerEditWrapper final : public WrapperOf<::IKVLayerEdit, IKVLayerEdit> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP put_LayerFile(BSTR* path) override { return Call(&Core::SetLayerFile, path); }
  STDMETHODIMP put_GUID(BSTR* guid) override { return Call(&Core::SetGUID, guid); }
};

class MetadataWrapper final : public WrapperOf<::IKVMetadata, IKVMetadata> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP ImportMetadata(IUnknown* metadata) override {
    return Call(&Core::ImportMetadata, metadata);
  }
  STDMETHODIMP ExportMetadata(IUnknown* metadata) override {
    return Call(&Core::ExportMetadata, metadata);
  }
};

}  // namespace kvdm::com
