// Analyses, layers and data items of the DLL.
#pragma once

#include "tests/boundary/client/call.h"
#include "tests/boundary/client/com_object.h"

namespace kvdm::client {

class AnalysisClient final : public ClientOf<IKVAnalysis, ::IKVAnalysis> {
 public:
  using ClientOf::ClientOf;

  std::string Name() override { return Call(&Abi::get_Name); }
  void SetName(std::string_view name) override { Call(&Abi::put_Name, name); }
  std::string LayerFile() override { return Call(&Abi::get_LayerFile); }
  void SetLayerFile(std::string_view path) override { Call(&Abi::put_LayerFile, path); }
  std::string Comments() override { return Call(&Abi::get_Comments); }
  void SetComments(std::string_view text) override { Call(&Abi::put_Comments, text); }
  std::string CreationTime() override { return Call(&Abi::get_CreationTime); }
  void SetCreationTime(std::string_view time) override { Call(&Abi::put_CreationTime, time); }
  std::string AnalysisDir() override { return Call(&Abi::get_AnalysisDir); }
  bool SetParameter(std::string_view name, std::string_view value) override {
    return Call(&Abi::SetParameter, name, value);
  }
  std::string GetParameter(std::string_view name) override {
    return Call(&Abi::GetParameter, name);
  }
  NameListRef ParametersList() override { return Call(&Abi::ParametersList); }
  bool ClearParametersList() override { return Call(&Abi::ClearParametersList); }
  std::string AnalysisGUID() override { return Call(&Abi::get_AnalysisGUID); }
  bool WriteToPropertySet(std::shared_ptr<NamedValueSet>& set) override {
    IUnknown* given = ToDll(set).Detach();
    Result<VARIANT_BOOL*> result;
    const HRESULT code = TheObject()->WriteToPropertySet(&given, result.Place());
    const auto taken = Owned(given);
    Check(code);
    const std::shared_ptr<NamedValueSet> filled = DllObject(taken);
    set = filled;
    return result.Take();
  }
  bool ReadFromPropertySet(const std::shared_ptr<NamedValueSet>& set) override {
    return Call(&Abi::ReadFromPropertySet, set);
  }
};

class CustLayerClient final : public ClientOf<IKVCustLayer, ::IKVCustLayer> {
 public:
  using ClientOf::ClientOf;

  std::string Name() override { return Call(&Abi::get_Name); }
  void SetName(std::string_view name) override { Call(&Abi::put_Name, name); }
  std::string LayerFile() override { return Call(&Abi::get_LayerFile); }
  void SetLayerFile(std::string_view path) override { Call(&Abi::put_LayerFile, path); }
  bool IsInternalData() override { return Call(&Abi::get_IsInternalData); }
  void SetIsInternalData(bool internal) override { Call(&Abi::put_IsInternalData, internal); }
  std::string NameField() override { return Call(&Abi::get_NameField); }
  void SetNameField(std::string_view field) override { Call(&Abi::put_NameField, field); }
  std::string IDField() override { return Call(&Abi::get_IDField); }
  void SetIDField(std::string_view field) override { Call(&Abi::put_IDField, field); }
  std::string LinkField() override { return Call(&Abi::get_LinkField); }
  void SetLinkField(std::string_view field) override { Call(&Abi::put_LinkField, field); }
  std::string CreationTime() override { return Call(&Abi::get_CreationTime); }
  void SetCreationTime(std::string_view time) override { Call(&Abi::put_CreationTime, time); }
  std::string StudyAreaName() override { return Call(&Abi::get_StudyAreaName); }
  void SetStudyAreaName(std::string_view name) override { Call(&Abi::put_StudyAreaName, name); }
  std::string Comments() override { return Call(&Abi::get_Comments); }
  void SetComments(std::string_view text) override { Call(&Abi::put_Comments, text); }
  bool SetParameter(std::string_view name, std::string_view value) override {
    return Call(&Abi::SetParameter, name, value);
  }
  std::string GetParameter(std::string_view name) override {
    return Call(&Abi::GetParameter, name);
  }
  NameListRef ParametersList() override { return Call(&Abi::ParametersList); }
  bool ClearParametersList() override { return Call(&Abi::ClearParametersList); }
  std::string GUID() override { return Call(&Abi::get_GUID); }
};

class StoreLayerClient final : public ClientOf<IKVStoreLayer, ::IKVStoreLayer> {
 public:
  using ClientOf::ClientOf;

  std::string Name() override { return Call(&Abi::get_Name); }
  void SetName(std::string_view name) override { Call(&Abi::put_Name, name); }
  std::string LayerFile() override { return Call(&Abi::get_LayerFile); }
  void SetLayerFile(std::string_view path) override { Call(&Abi::put_LayerFile, path); }
  bool IsInternalData() override { return Call(&Abi::get_IsInternalData); }
  void SetIsInternalData(bool internal) override { Call(&Abi::put_IsInternalData, internal); }
  std::string NameField() override { return Call(&Abi::get_NameField); }
  void SetNameField(std::string_view field) override { Call(&Abi::put_NameField, field); }
  std::string IDField() override { return Call(&Abi::get_IDField); }
  void SetIDField(std::string_view field) override { Call(&Abi::put_IDField, field); }
  std::string CreationTime() override { return Call(&Abi::get_CreationTime); }
  void SetCreationTime(std::string_view time) override { Call(&Abi::put_CreationTime, time); }
  std::string StudyAreaName() override { return Call(&Abi::get_StudyAreaName); }
  void SetStudyAreaName(std::string_view name) override { Call(&Abi::put_StudyAreaName, name); }
  std::string Comments() override { return Call(&Abi::get_Comments); }
  void SetComments(std::string_view text) override { Call(&Abi::put_Comments, text); }
  bool SetParameter(std::string_view name, std::string_view value) override {
    return Call(&Abi::SetParameter, name, value);
  }
  std::string GetParameter(std::string_view name) override {
    return Call(&Abi::GetParameter, name);
  }
  NameListRef ParametersList() override { return Call(&Abi::ParametersList); }
  bool ClearParametersList() override { return Call(&Abi::ClearParametersList); }
  std::string GUID() override { return Call(&Abi::get_GUID); }
};

class DataItemClient final : public ClientOf<IKVDataItem, ::IKVDataItem> {
 public:
  using ClientOf::ClientOf;

  std::string Name() override { return Call(&Abi::get_Name); }
  void SetName(std::string_view name) override { Call(&Abi::put_Name, name); }
  std::string LayerFile() override { return Call(&Abi::get_LayerFile); }
  void SetLayerFile(std::string_view path) override { Call(&Abi::put_LayerFile, path); }
  std::string AdditionalInfo() override { return Call(&Abi::get_AdditionalInfo); }
  void SetAdditionalInfo(std::string_view info) override { Call(&Abi::put_AdditionalInfo, info); }
  bool SetParameter(std::string_view name, std::string_view value) override {
    return Call(&Abi::SetParameter, name, value);
  }
  std::string GetParameter(std::string_view name) override {
    return Call(&Abi::GetParameter, name);
  }
  NameListRef ParametersList() override { return Call(&Abi::ParametersList); }
  bool ClearParametersList() override { return Call(&Abi::ClearParametersList); }
  std::string GUID() override { return Call(&Abi::get_GUID); }
};

class LayerEditClient final : public ClientOf<IKVLayerEdit, ::IKVLayerEdit> {
 public:
  using ClientOf::ClientOf;

  void SetLayerFile(std::string_view path) override { Call(&Abi::put_LayerFile, path); }
  void SetGUID(std::string_view guid) override { Call(&Abi::put_GUID, guid); }
};

class MetadataClient final : public ClientOf<IKVMetadata, ::IKVMetadata> {
 public:
  using ClientOf::ClientOf;

  void ImportMetadata(const std::shared_ptr<LayerMetadata>& metadata) override {
    Call(&Abi::ImportMetadata, metadata);
  }
  void ExportMetadata(const std::shared_ptr<LayerMetadata>& metadata) override {
    Call(&Abi::ExportMetadata, metadata);
  }
};

}  // namespace kvdm::client
