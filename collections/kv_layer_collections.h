// The store and customer layers, over a STORELAYERCOLLECTION and a CUSTLAYERCOLLECTION element.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <kvdm/datamanager/layers.h>

#include "collections/collection_view.h"

namespace kvdm {

// What both share: layers with one file each, in one folder of the working directory.
class LayerCollection {
 public:
  // `folder_name` is the folder's name in the working directory.
  LayerCollection(const CollectionRules& rules, const char* folder_name,
                  std::shared_ptr<GisCore> gis_core)
      : view_(rules, std::move(gis_core)), folder_name_(folder_name) {}

  [[nodiscard]] CollectionView& view() { return view_; }

  // The layers folder without a trailing "\"; creates it. "" without an element. Errors reach the
  // caller.
  [[nodiscard]] std::string Folder() const;

  // Appends a layer with a free layer file path. False for a name that exists. Reports failures.
  [[nodiscard]] bool Create(std::string_view name) const;

  // Takes a layer out of the collection; its file stays. Reports failures.
  [[nodiscard]] bool Delete(const char* attribute, std::string_view key) const;

  // A new view of the layer that a look-up selects. Reports failures.
  template <class Layer>
  [[nodiscard]] std::shared_ptr<Layer> Get(const char* attribute, std::string_view key) const {
    return view_.Get<Layer>(attribute, key, [&](const xml::Element& element) {
      auto layer = std::make_shared<Layer>(view_.gis_core());
      layer->AttachNode(element);
      layer->AttachDataManager(view_.data_manager());
      return layer;
    });
  }

  // Errors reach the caller.
  [[nodiscard]] bool Exists(std::string_view name) const;
  [[nodiscard]] bool ExistsByGUID(std::string_view guid) const;

 private:
  CollectionView view_;
  const char* folder_name_;
};

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
  void SetNode(xml::Element node) { layers_.view().SetNode(std::move(node)); }

 private:
  LayerCollection layers_;
};

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
  void SetNode(xml::Element node) { layers_.view().SetNode(std::move(node)); }

 private:
  LayerCollection layers_;
};

}  // namespace kvdm
