// One analysis, over its ANALYSIS element.
#pragma once

#include <kvdm/datamanager/analyses.h>
#include <kvdm/datamanager/layers.h>

#include "items/element_view.h"

namespace kvdm {

class KVAnalysis final : public ParameterizedItem<IKVAnalysis>, public IKVMetadata {
 public:
  explicit KVAnalysis(std::shared_ptr<GisCore> gis_core);

  std::string Name() override;
  void SetName(std::string_view name) override;
  std::string LayerFile() override;
  void SetLayerFile(std::string_view path) override;
  std::string Comments() override;
  void SetComments(std::string_view comments) override;
  std::string CreationTime() override;
  void SetCreationTime(std::string_view time) override;
  std::string AnalysisDir() override;
  std::string AnalysisGUID() override;
  bool WriteToPropertySet(std::shared_ptr<NamedValueSet>& set) override;
  bool ReadFromPropertySet(const std::shared_ptr<NamedValueSet>& set) override;

  void ImportMetadata(const std::shared_ptr<LayerMetadata>& metadata) override;
  void ExportMetadata(const std::shared_ptr<LayerMetadata>& metadata) override;

  std::shared_ptr<Unknown> Facet(std::type_index interface_type) override {
    return layer_edit_.If(interface_type);
  }

 private:
  void ApplyEntry(const std::string& name, const Value& value);
  void ImportParameters(NamedValueSet& document);

  std::shared_ptr<GisCore> gis_core_;
  LayerEdit layer_edit_;
};

}  // namespace kvdm
