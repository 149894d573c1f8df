// One study area, over its STUDYAREA element in the catalogue, and the tables of the current one.
#pragma once

#include <kvdm/datamanager/layers.h>
#include <kvdm/datamanager/study_areas.h>

#include "items/element_view.h"

namespace kvdm {

// The study area of this name is left out of every list of names.
inline constexpr char kUnlistedStudyArea[] = "Default";

class KVStudyArea final : public IKVPropertySet,
                          public IKVStudyArea,
                          public IKVMetadata,
                          public IKVStudyArea2,
                          private CatalogueView {
 public:
  explicit KVStudyArea(std::shared_ptr<GisCore> gis_core);

  int Count() override { return 0; }
  Value GetProperty(std::string_view name) override;
  bool SetProperty(std::string_view name, const Value& value) override;

  std::string Name() override;
  void SetName(std::string_view name) override;
  std::string LayerFile() override;
  std::string StudyAreaDir() override;
  std::string Comments() override;
  void SetComments(std::string_view comments) override;
  std::string Dataset() override;
  void SetDataset(std::string_view dataset) override;
  std::string GUID() override;

  void ImportMetadata(const std::shared_ptr<LayerMetadata>& metadata) override;
  void ExportMetadata(const std::shared_ptr<LayerMetadata>& metadata) override;

  void SetStudyAreaDir(std::string_view folder) override;

  std::shared_ptr<Unknown> Facet(std::type_index interface_type) override {
    return layer_edit_.If(interface_type);
  }

  // What the data manager follows.
  static std::shared_ptr<CatalogueView> Followed(const std::shared_ptr<KVStudyArea>& area) {
    return {area, area.get()};
  }

  // The tables folder of this study area with a trailing "\"; "" without an element. Creates
  // nothing.
  std::string TablesDir();
  // A free path in the tables folder, without extension. Creates nothing.
  std::string FreeTablePath();

  // Bound by the collection right after creation.
  void SetNode(xml::Element node) { view_.AttachNode(std::move(node)); }
  void SetDataManager(DataManagerRef data_manager) {
    view_.AttachDataManager(std::move(data_manager));
  }

 private:
  [[nodiscard]] const xml::Element& CatalogueElement() const override { return view_.node(); }
  void Rebind(xml::Element element) noexcept override { view_.AttachNode(std::move(element)); }

  [[nodiscard]] xml::Element Properties() const;
  bool ReportMissingProperties(std::string_view name);
  void ShowPlain(std::string_view text);

  std::shared_ptr<GisCore> gis_core_;
  ElementView view_;
  LayerEdit layer_edit_;
};

// Where the tables of the current study area live.
class KVTablesManager final : public IKVTablesManager {
 public:
  std::string TablesDir() override;
  std::string FreeTablePath() override;

  // Bound by the data manager right after creation.
  void SetDataManager(DataManagerRef data_manager) { data_manager_ = std::move(data_manager); }

 private:
  DataManagerRef data_manager_;
};

}  // namespace kvdm
