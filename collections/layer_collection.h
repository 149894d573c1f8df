// What the store and customer layer collections share: layers with one file each, in one folder of
// the working directory.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "collections/collection_view.h"

namespace kvdm {

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
    return view_.Get<Layer>(attribute, key, [&](const std::shared_ptr<xml::Element>& element) {
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

}  // namespace kvdm
