// Wrappers of the collections of analyses, layers and data items.
#pragma once

#include <kvdm/datamanager/analyses.h>
#include <kvdm/datamanager/data_items.h>
#include <kvdm/datamanager/layers.h>

#include "com/kvdm.h"
#include "com/object.h"

namespace kvdm::com {

class AnalysisCollectionWrapper final
    : public WrapperOf<::IKVAnalysisCollection, IKVAnalysisCollection> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP AnalysesList(::INameList** result) override {
    return Call(&Core::AnalysesList, result);
  }
  STDMETHODIMP CreateAnalysis(BSTR* name, VARIANT_BOOL* result) override {
    return Call(&Core::CreateAnalysis, name, result);
  }
  STDMETHODIMP DeleteAnalysis(BSTR* name, VARIANT_BOOL* result) override {
    return Call(&Core::DeleteAnalysis, name, result);
  }
  STDMETHODIMP GetAnalysis(BSTR* name, ::IKVAnalysis** result) override {
    return Call(&Core::GetAnalysis, name, result);
  }
  STDMETHODIMP AnalysisExists(BSTR* name, VARIANT_BOOL* result) override {
    return Call(&Core::AnalysisExists, name, result);
  }
  STDMETHODIMP AnalysesGUIDsList(::INameList** result) override {
    return Call(&Core::AnalysesGUIDsList, result);
  }
  STDMETHODIMP DeleteAnalysisByGUID(BSTR* guid, VARIANT_BOOL* result) override {
    return Call(&Core::DeleteAnalysisByGUID, guid, result);
  }
  STDMETHODIMP GetAnalysisByGUID(BSTR* guid, ::IKVAnalysis** result) override {
    return Call(&Core::GetAnalysisByGUID, guid, result);
  }
  STDMETHODIMP AnalysisExistsByGUID(BSTR* guid, VARIANT_BOOL* result) override {
    return Call(&Core::AnalysisExistsByGUID, guid, result);
  }
};

class StoreLayerCollectionWrapper final
    : public WrapperOf<::IKVStoreLayerCollection, IKVStoreLayerCollection> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP StoreLayersList(::INameList** result) override {
    return Call(&Core::StoreLayersList, result);
  }
  STDMETHODIMP CreateStoreLayer(BSTR* name, VARIANT_BOOL* result) override {
    return Call(&Core::CreateStoreLayer, name, result);
  }
  STDMETHODIMP DeleteStoreLayer(BSTR* name, VARIANT_BOOL* result) override {
    return Call(&Core::DeleteStoreLayer, name, result);
  }
  STDMETHODIMP GetStoreLayer(BSTR* name, ::IKVStoreLayer** result) override {
    return Call(&Core::GetStoreLayer, name, result);
  }
  STDMETHODIMP StoreLayerExists(BSTR* name, VARIANT_BOOL* result) override {
    return Call(&Core::StoreLayerExists, name, result);
  }
  STDMETHODIMP StoreLayersGUIDsList(::INameList** result) override {
    return Call(&Core::StoreLayersGUIDsList, result);
  }
  STDMETHODIMP DeleteStoreLayerByGUID(BSTR* guid, VARIANT_BOOL* result) override {
    return Call(&Core::DeleteStoreLayerByGUID, guid, result);
  }
  STDMETHODIMP GetStoreLayerByGUID(BSTR* guid, ::IKVStoreLayer** result) override {
    return Call(&Core::GetStoreLayerByGUID, guid, result);
  }
  STDMETHODIMP StoreLayerExistsByGUID(BSTR* guid, VARIANT_BOOL* result) override {
    return Call(&Core::StoreLayerExistsByGUID, guid, result);
  }
  STDMETHODIMP StoreLayersDir(BSTR* result) override { return Call(&Core::StoreLayersDir, result); }
};

class CustLayerCollectionWrapper final
    : public WrapperOf<::IKVCustLayerCollection, IKVCustLayerCollection> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP CustLayersList(::INameList** result) override {
    return Call(&Core::CustLayersList, result);
  }
  STDMETHODIMP CreateCustLayer(BSTR* name, VARIANT_BOOL* result) override {
    return Call(&Core::CreateCustLayer, name, result);
  }
  STDMETHODIMP DeleteCustLayer(BSTR* name, VARIANT_BOOL* result) override {
    return Call(&Core::DeleteCustLayer, name, result);
  }
  STDMETHODIMP GetCustLayer(BSTR* name, ::IKVCustLayer** result) override {
    return Call(&Core::GetCustLayer, name, result);
  }
  STDMETHODIMP CustLayerExists(BSTR* name, VARIANT_BOOL* result) override {
    return Call(&Core::CustLayerExists, name, result);
  }
  STDMETHODIMP CustLayersGUIDsList(::INameList** result) override {
    return Call(&Core::CustLayersGUIDsList, result);
  }
  STDMETHODIMP DeleteCustLayerByGUID(BSTR* guid, VARIANT_BOOL* result) override {
    return Call(&Core::DeleteCustLayerByGUID, guid, result);
  }
  STDMETHODIMP GetCustLayerByGUID(BSTR* guid, ::IKVCustLayer** result) override {
    return Call(&Core::GetCustLayerByGUID, guid, result);
  }
  STDMETHODIMP CustLayerExistsByGUID(BSTR* guid, VARIANT_BOOL* result) override {
    return Call(&Core::CustLayerExistsByGUID, guid, result);
  }
  STDMETHODIMP CustLayersDir(BSTR* result) override { return Call(&Core::CustLayersDir, result); }
};

class DataCollectionWrapper final : public WrapperOf<::IKVDataCollection, IKVDataCollection> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP DataItemsList(::INameList** result) override {
    return Call(&Core::DataItemsList, result);
  }
  STDMETHODIMP GetDataItem(BSTR* name, ::IKVDataItem** result) override {
    return Call(&Core::GetDataItem, name, result);
  }
  STDMETHODIMP CreateDataItem(BSTR* name, VARIANT_BOOL* result) override {
    return Call(&Core::CreateDataItem, name, result);
  }
  STDMETHODIMP DeleteDataItem(BSTR* name, VARIANT_BOOL* result) override {
    return Call(&Core::DeleteDataItem, name, result);
  }
  STDMETHODIMP DataItemExists(BSTR* name, VARIANT_BOOL* result) override {
    return Call(&Core::DataItemExists, name, result);
  }
  STDMETHODIMP DataItemsGUIDsList(::INameList** result) override {
    return Call(&Core::DataItemsGUIDsList, result);
  }
  STDMETHODIMP GetDataItemByGUID(BSTR* guid, ::IKVDataItem** result) override {
    return Call(&Core::GetDataItemByGUID, guid, result);
  }
  STDMETHODIMP DeleteDataItemByGUID(BSTR* guid, VARIANT_BOOL* result) override {
    return Call(&Core::DeleteDataItemByGUID, guid, result);
  }
  STDMETHODIMP DataItemExistsByGUID(BSTR* guid, VARIANT_BOOL* result) override {
    return Call(&Core::DataItemExistsByGUID, guid, result);
  }
  STDMETHODIMP DataItemsDir(BSTR* result) override { return Call(&Core::DataItemsDir, result); }
};

}  // namespace kvdm::com
