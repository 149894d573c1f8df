// The customer layers, over a CUSTLAYERCOLLECTION element.
#pragma once

#include <kvdm/datamanager/layers.h>

#include "collections/layer_collection.h"

namespace kvdm {

class KVCustLayerCollection final : public IKVCustLayerCollection {
 public:
  explicit KVCustLayerCollection(std::shared_ptr<GisCore> gis_core);

  NameListRef CustLayersList() override;
  bool CreateCustLayer(std::string_view name) override;
  bool DeleteCustLayer(std::string_view name) override;
  std::shared_ptr<IKVCustLayer> GetCustLayer(std::string_view name) override;
  bool CustLayerExists(std::string_view name) override;
  NameListRef CustLayersGUIDsList() override;
  bool DeleteCustLayerByGUID(std::string_view guid) override;
  std::shared_ptr<IKVCustLayer> GetCustLayerByGUID(std::string_view guid) override;
  bool CustLayerExistsByGUID(std::string_view guid) override;
  std::string CustLayersDir() override;

  // Bound by the data manager right after creation.
  void SetDataManager(DataManagerRef data_manager) {
    layers_.view().SetDataManager(std::move(data_manager));
  }
  void SetNode(std::shared_ptr<xml::Element> node) { layers_.view().SetNode(std::move(node)); }

 private:
  LayerCollection layers_;
};

}  // namespace kvdm
