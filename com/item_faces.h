// The interfaces of analyses, layers and data items.
#pragma once

#include "com/kvdm.h"
#include "com/object.h"
#include "datamanager/interfaces.h"

namespace kvdm::com {

class AnalysisFace final : public FaceOf<::IKVAnalysis, IKVAnalysis> {
 public:
  using FaceOf::FaceOf;

  STDMETHODIMP get_Name(BSTR* result) override { return Call(&Core::Name, result); }
  STDMETHODIMP put_Name(BSTR* name) override { return Call(&Core::SetName, name); }
  STDMETHODIMP get_LayerFile(BSTR* result) override { return Call(&Core::LayerFile, result); }
  STDMETHODIMP put_LayerFile(BSTR* path) override { return Call(&Core::SetLayerFile, path); }
  STDMETHODIMP get_Comments(BSTR* result) override { return Call(&Core::Comments, result); }
  STDMETHODIMP put_Comments(BSTR* comments) override { return Call(&Core::SetComments, comments); }
  STDMETHODIMP get_CreationTime(BSTR* result) override { return Call(&Core::CreationTime, result); }
  STDMETHODIMP put_CreationTime(BSTR* time) override { return Call(&Core::SetCreationTime, time); }
  STDMETHODIMP get_AnalysisDir(BSTR* result) override { return Call(&Core::AnalysisDir, result); }
  STDMETHODIMP SetParameter(BSTR* name, BSTR* value, VARIANT_BOOL* result) override {
    return Call(&Core::SetParameter, name, value, result);
  }
  STDMETHODIMP GetParameter(BSTR* name, BSTR* result) override {
    return Call(&Core::GetParameter, name, result);
  }
  STDMETHODIMP ParametersList(::INameList** result) override {
    return Call(&Core::ParametersList, result);
  }
  STDMETHODIMP ClearParametersList(VARIANT_BOOL* result) override {
    return Call(&Core::ClearParametersList, result);
  }
  STDMETHODIMP get_AnalysisGUID(BSTR* result) override { return Call(&Core::AnalysisGUID, result); }
  STDMETHODIMP WriteToPropertySet(IUnknown** set, VARIANT_BOOL* result) override {
    return Call(&Core::WriteToPropertySet, set, result);
  }
  STDMETHODIMP ReadFromPropertySet(IUnknown* set, VARIANT_BOOL* result) override {
    return Call(&Core::ReadFromPropertySet, set, result);
  }
};

class CustLayerFace final : public FaceOf<::IKVCustLayer, IKVCustLayer> {
 public:
  using FaceOf::FaceOf;

  STDMETHODIMP get_Name(BSTR* result) override { return Call(&Core::Name, result); }
  STDMETHODIMP put_Name(BSTR* name) override { return Call(&Core::SetName, name); }
  STDMETHODIMP get_LayerFile(BSTR* result) override { return Call(&Core::LayerFile, result); }
  STDMETHODIMP put_LayerFile(BSTR* path) override { return Call(&Core::SetLayerFile, path); }
  STDMETHODIMP get_IsInternalData(VARIANT_BOOL* result) override {
    return Call(&Core::IsInternalData, result);
  }
  STDMETHODIMP put_IsInternalData(VARIANT_BOOL internal) override {
    return Call(&Core::SetIsInternalData, internal);
  }
  STDMETHODIMP get_NameField(BSTR* result) override { return Call(&Core::NameField, result); }
  STDMETHODIMP put_NameField(BSTR* field) override { return Call(&Core::SetNameField, field); }
  STDMETHODIMP get_IDField(BSTR* result) override { return Call(&Core::IDField, result); }
  STDMETHODIMP put_IDField(BSTR* field) override { return Call(&Core::SetIDField, field); }
  STDMETHODIMP get_LinkField(BSTR* result) override { return Call(&Core::LinkField, result); }
  STDMETHODIMP put_LinkField(BSTR* field) override { return Call(&Core::SetLinkField, field); }
  STDMETHODIMP get_CreationTime(BSTR* result) override { return Call(&Core::CreationTime, result); }
  STDMETHODIMP put_CreationTime(BSTR* time) override { return Call(&Core::SetCreationTime, time); }
  STDMETHODIMP get_StudyAreaName(BSTR* result) override {
    return Call(&Core::StudyAreaName, result);
  }
  STDMETHODIMP put_StudyAreaName(BSTR* name) override {
    return Call(&Core::SetStudyAreaName, name);
  }
  STDMETHODIMP get_Comments(BSTR* result) override { return Call(&Core::Comments, result); }
  STDMETHODIMP put_Comments(BSTR* comments) override { return Call(&Core::SetComments, comments); }
  STDMETHODIMP SetParameter(BSTR* name, BSTR* value, VARIANT_BOOL* result) override {
    return Call(&Core::SetParameter, name, value, result);
  }
  STDMETHODIMP GetParameter(BSTR* name, BSTR* result) override {
    return Call(&Core::GetParameter, name, result);
  }
  STDMETHODIMP ParametersList(::INameList** result) override {
    return Call(&Core::ParametersList, result);
  }
  STDMETHODIMP ClearParametersList(VARIANT_BOOL* result) override {
    return Call(&Core::ClearParametersList, result);
  }
  STDMETHODIMP get_GUID(BSTR* result) override { return Call(&Core::GUID, result); }
};

class StoreLayerFace final : public FaceOf<::IKVStoreLayer, IKVStoreLayer> {
 public:
  using FaceOf::FaceOf;

  STDMETHODIMP get_Name(BSTR* result) override { return Call(&Core::Name, result); }
  STDMETHODIMP put_Name(BSTR* name) override { return Call(&Core::SetName, name); }
  STDMETHODIMP get_LayerFile(BSTR* result) override { return Call(&Core::LayerFile, result); }
  STDMETHODIMP put_LayerFile(BSTR* path) override { return Call(&Core::SetLayerFile, path); }
  STDMETHODIMP get_IsInternalData(VARIANT_BOOL* result) override {
    return Call(&Core::IsInternalData, result);
  }
  STDMETHODIMP put_IsInternalData(VARIANT_BOOL internal) override {
    return Call(&Core::SetIsInternalData, internal);
  }
  STDMETHODIMP get_NameField(BSTR* result) override { return Call(&Core::NameField, result); }
  STDMETHODIMP put_NameField(BSTR* field) override { return Call(&Core::SetNameField, field); }
  STDMETHODIMP get_IDField(BSTR* result) override { return Call(&Core::IDField, result); }
  STDMETHODIMP put_IDField(BSTR* field) override { return Call(&Core::SetIDField, field); }
  STDMETHODIMP get_CreationTime(BSTR* result) override { return Call(&Core::CreationTime, result); }
  STDMETHODIMP put_CreationTime(BSTR* time) override { return Call(&Core::SetCreationTime, time); }
  STDMETHODIMP get_StudyAreaName(BSTR* result) override {
    return Call(&Core::StudyAreaName, result);
  }
  STDMETHODIMP put_StudyAreaName(BSTR* name) override {
    return Call(&Core::SetStudyAreaName, name);
  }
  STDMETHODIMP get_Comments(BSTR* result) override { return Call(&Core::Comments, result); }
  STDMETHODIMP put_Comments(BSTR* comments) override { return Call(&Core::SetComments, comments); }
  STDMETHODIMP SetParameter(BSTR* name, BSTR* value, VARIANT_BOOL* result) override {
    return Call(&Core::SetParameter, name, value, result);
  }
  STDMETHODIMP GetParameter(BSTR* name, BSTR* result) override {
    return Call(&Core::GetParameter, name, result);
  }
  STDMETHODIMP ParametersList(::INameList** result) override {
    return Call(&Core::ParametersList, result);
  }
  STDMETHODIMP ClearParametersList(VARIANT_BOOL* result) override {
    return Call(&Core::ClearParametersList, result);
  }
  STDMETHODIMP get_GUID(BSTR* result) override { return Call(&Core::GUID, result); }
};

class DataItemFace final : public FaceOf<::IKVDataItem, IKVDataItem> {
 public:
  using FaceOf::FaceOf;

  STDMETHODIMP get_Name(BSTR* result) override { return Call(&Core::Name, result); }
  STDMETHODIMP put_Name(BSTR* name) override { return Call(&Core::SetName, name); }
  STDMETHODIMP get_LayerFile(BSTR* result) override { return Call(&Core::LayerFile, result); }
  STDMETHODIMP put_LayerFile(BSTR* path) override { return Call(&Core::SetLayerFile, path); }
  STDMETHODIMP get_AdditionalInfo(BSTR* result) override {
    return Call(&Core::AdditionalInfo, result);
  }
  STDMETHODIMP put_AdditionalInfo(BSTR* info) override {
    return Call(&Core::SetAdditionalInfo, info);
  }
  STDMETHODIMP SetParameter(BSTR* name, BSTR* value, VARIANT_BOOL* result) override {
    return Call(&Core::SetParameter, name, value, result);
  }
  STDMETHODIMP GetParameter(BSTR* name, BSTR* result) override {
    return Call(&Core::GetParameter, name, result);
  }
  STDMETHODIMP ParametersList(::INameList** result) override {
    return Call(&Core::ParametersList, result);
  }
  STDMETHODIMP ClearParametersList(VARIANT_BOOL* result) override {
    return Call(&Core::ClearParametersList, result);
  }
  STDMETHODIMP get_GUID(BSTR* result) override { return Call(&Core::GUID, result); }
};

class LayerEditFace final : public FaceOf<::IKVLayerEdit, IKVLayerEdit> {
 public:
  using FaceOf::FaceOf;

  STDMETHODIMP put_LayerFile(BSTR* path) override { return Call(&Core::SetLayerFile, path); }
  STDMETHODIMP put_GUID(BSTR* guid) override { return Call(&Core::SetGUID, guid); }
};

class MetadataFace final : public FaceOf<::IKVMetadata, IKVMetadata> {
 public:
  using FaceOf::FaceOf;

  STDMETHODIMP ImportMetadata(IUnknown* metadata) override {
    return Call(&Core::ImportMetadata, metadata);
  }
  STDMETHODIMP ExportMetadata(IUnknown* metadata) override {
    return Call(&Core::ExportMetadata, metadata);
  }
};

}  // namespace kvdm::com
