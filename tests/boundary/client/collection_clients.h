// Collections of analyses, layers and data items of the DLL.
#pragma once

#include "tests/boundary/client/call.h"

namespace kvdm::client {

class AnalysisCollectionClient final
    : public ClientOf<IKVAnalysisCollection, ::IKVAnalysisCollection> {
 public:
  using ClientOf::ClientOf;

  NameListRef AnalysesList() override { return Call(&Abi::AnalysesList); }
  bool CreateAnalysis(std::string_view name) override { return Call(&Abi::CreateAnalysis, name); }
  bool DeleteAnalysis(std::string_view name) override { return Call(&Abi::DeleteAnalysis, name); }
  std::shared_ptr<IKVAnalysis> GetAnalysis(std::string_view name) override {
    return Call(&Abi::GetAnalysis, name);
  }
  bool AnalysisExists(std::string_view name) override { return Call(&Abi::AnalysisExists, name); }
  NameListRef AnalysesGUIDsList() override { return Call(&Abi::AnalysesGUIDsList); }
  bool DeleteAnalysisByGUID(std::string_view guid) override {
    return Call(&Abi::DeleteAnalysisByGUID, guid);
  }
  std::shared_ptr<IKVAnalysis> GetAnalysisByGUID(std::string_view guid) override {
    return Call(&Abi::GetAnalysisByGUID, guid);
  }
  bool AnalysisExistsByGUID(std::string_view guid) override {
    return Call(&Abi::AnalysisExistsByGUID, guid);
  }
};

class StoreLayerCollectionClient final
    : public ClientOf<IKVStoreLayerCollection, ::IKVStoreLayerCollection> {
 public:
  using ClientOf::ClientOf;

  NameListRef StoreLayersList() override { return Call(&Abi::StoreLayersList); }
  bool CreateStoreLayer(std::string_view name) override {
    return Call(&Abi::CreateStoreLayer, name);
  }
  bool DeleteStoreLayer(std::string_view name) override {
    return Call(&Abi::DeleteStoreLayer, name);
  }
  std::shared_ptr<IKVStoreLayer> GetStoreLayer(std::string_view name) override {
    return Call(&Abi::GetStoreLayer, name);
  }
  bool StoreLayerExists(std::string_view name) override {
    return Call(&Abi::StoreLayerExists, name);
  }
  NameListRef StoreLayersGUIDsList() override { return Call(&Abi::StoreLayersGUIDsList); }
  bool DeleteStoreLayerByGUID(std::string_view guid) override {
    return Call(&Abi::DeleteStoreLayerByGUID, guid);
  }
  std::shared_ptr<IKVStoreLayer> GetStoreLayerByGUID(std::string_view guid) override {
    return Call(&Abi::GetStoreLayerByGUID, guid);
  }
  bool StoreLayerExistsByGUID(std::string_view guid) override {
    return Call(&Abi::StoreLayerExistsByGUID, guid);
  }
  std::string StoreLayersDir() override { return Call(&Abi::StoreLayersDir); }
};

class CustLayerCollectionClient final
    : public ClientOf<IKVCustLayerCollection, ::IKVCustLayerCollection> {
 public:
  using ClientOf::ClientOf;

  NameListRef CustLayersList() override { return Call(&Abi::CustLayersList); }
  bool CreateCustLayer(std::string_view name) override { return Call(&Abi::CreateCustLayer, name); }
  bool DeleteCustLayer(std::string_view name) override { return Call(&Abi::DeleteCustLayer, name); }
  std::shared_ptr<IKVCustLayer> GetCustLayer(std::string_view name) override {
    return Call(&Abi::GetCustLayer, name);
  }
  bool CustLayerExists(std::string_view name) override { return Call(&Abi::CustLayerExists, name); }
  NameListRef CustLayersGUIDsList() override { return Call(&Abi::CustLayersGUIDsList); }
  bool DeleteCustLayerByGUID(std::string_view guid) override {
    return Call(&Abi::DeleteCustLayerByGUID, guid);
  }
  std::shared_ptr<IKVCustLayer> GetCustLayerByGUID(std::string_view guid) override {
    return Call(&Abi::GetCustLayerByGUID, guid);
  }
  bool CustLayerExistsByGUID(std::string_view guid) override {
    return Call(&Abi::CustLayerExistsByGUID, guid);
  }
  std::string CustLayersDir() override { return Call(&Abi::CustLayersDir); }
};

class DataCollectionClient final : public ClientOf<IKVDataCollection, ::IKVDataCollection> {
 public:
  using ClientOf::ClientOf;

  NameListRef DataItemsList() override { return Call(&Abi::DataItemsList); }
  std::shared_ptr<IKVDataItem> GetDataItem(std::string_view name) override {
    return Call(&Abi::GetDataItem, name);
  }
  bool CreateDataItem(std::string_view name) override { return Call(&Abi::CreateDataItem, name); }
  bool DeleteDataItem(std::string_view name) override { return Call(&Abi::DeleteDataItem, name); }
  bool DataItemExists(std::string_view name) override { return Call(&Abi::DataItemExists, name); }
  NameListRef DataItemsGUIDsList() override { return Call(&Abi::DataItemsGUIDsList); }
  std::shared_ptr<IKVDataItem> GetDataItemByGUID(std::string_view guid) override {
    return Call(&Abi::GetDataItemByGUID, guid);
  }
  bool DeleteDataItemByGUID(std::string_view guid) override {
    return Call(&Abi::DeleteDataItemByGUID, guid);
  }
  bool DataItemExistsByGUID(std::string_view guid) override {
    return Call(&Abi::DataItemExistsByGUID, guid);
  }
  std::string DataItemsDir() override { return Call(&Abi::DataItemsDir); }
};

}  // namespace kvdm::client
