// One store layer, over its STORELAYER element.
#pragma once

#include "items/layer_view.h"

namespace kvdm {

class KVStoreLayer final : public LayerView<IKVStoreLayer> {
 public:
  explicit KVStoreLayer(std::shared_ptr<GisCore> gis_core)
      : LayerView(ReportStyle::kShown, std::move(gis_core)) {}

  // Marks the path as absolute as well.
  void SetLayerFile(std::string_view path) override;

  void ImportMetadata(const std::shared_ptr<LayerMetadata>& metadata) override;
  void ExportMetadata(const std::shared_ptr<LayerMetadata>& metadata) override;

 private:
  bool IsTaken(std::string_view name) override;
};

}  // namespace kvdm
