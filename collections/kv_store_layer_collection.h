// The store layers, over a STORELAYERCOLLECTION element.
#pragma once

#include <kvdm/datamanager/layers.h>

#include "collections/layer_collection.h"

namespace kvdm {

class KVStoreLayerCollection final : public IKVStoreLayerCollection {
 public:
  explicit KVStoreLayerCollection(std::shared_ptr<GisCore> gis_core);

  NameListRef StoreLayersList() override;
  bool CreateStoreLayer(std::string_view name) override;
  bool DeleteStoreLayer(std::string_view name) override;
  std::shared_ptr<IKVStoreLayer> GetStoreLayer(std::string_view name) override;
  bool StoreLayerExists(std::string_view name) override;
  NameListRef StoreLayersGUIDsList() override;
  bool DeleteStoreLayerByGUID(std::string_view guid) override;
  std::shared_ptr<IKVStoreLayer> GetStoreLayerByGUID(std::string_view guid) override;
  bool StoreLayerExistsByGUID(std::string_view guid) override;
  std::string StoreLayersDir() override;

  // Bound by the data manager right after creation.
  void SetDataManager(DataManagerRef data_manager) {
    layers_.view().SetDataManager(std::move(data_manager));
  }
  void SetNode(std::shared_ptr<xml::Element> node) { layers_.view().SetNode(std::move(node)); }

 private:
  LayerCollection layers_;
};

}  // namespace kvdm
