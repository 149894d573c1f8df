// One customer layer, over its CUSTLAYER element.
#pragma once

#include "items/layer_view.h"

namespace kvdm {

class KVCustLayer final : public LayerView<IKVCustLayer> {
 public:
  explicit KVCustLayer(std::shared_ptr<GisCore> gis_core)
      : LayerView(ReportStyle::kByName, std::move(gis_core)) {}

  std::string LinkField() override;
  void SetLinkField(std::string_view field) override;

  void ImportMetadata(const std::shared_ptr<LayerMetadata>& metadata) override;
  void ExportMetadata(const std::shared_ptr<LayerMetadata>& metadata) override;

 private:
  bool IsTaken(std::string_view name) override;
};

}  // namespace kvdm
