// Store and customer layers, over their STORELAYER and CUSTLAYER elements.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <kvdm/datamanager/layers.h>

#include "items/element_view.h"
#include "util/kvdm_utils.h"
#include "util/names.h"

namespace kvdm {

inline constexpr LayerEditMessages kLayerEditTexts = {messages::kLayerFile, messages::kLayerGuid};

// What both share, on top of their own interfaces.
template <class Interface>
class LayerView : public ParameterizedItem<Interface>, public IKVMetadata {
 public:
  LayerView(ReportStyle reports, std::shared_ptr<GisCore> gis_core)
      : ParameterizedItem<Interface>({reports, messages::kSetParameter}),
        gis_core_(std::move(gis_core)),
        layer_edit_(*this, view(), kLayerEditTexts) {}

  std::string Name() override { return UnwrapName(view().TextOrNothing(attributes::kName)); }
  void SetName(std::string_view name) override {
    if (view().node() && !IsTaken(name)) view().SetAndFlush(attributes::kName, WrapName(name));
  }
  std::string LayerFile() override { return view().TextOrNothing(attributes::kLayerFile); }
  void SetLayerFile(std::string_view path) override {
    view().SetAndFlush(attributes::kLayerFile, path);
  }
  // True for the stored text "TRUE" alone.
  bool IsInternalData() override {
    return view().TextOrNothing(attributes::kIsInternalData) == kTrue;
  }
  void SetIsInternalData(bool internal) override {
    SetQuietly(attributes::kIsInternalData, internal ? kTrue : kFalse);
  }
  std::string NameField() override { return view().TextOrNothing(attributes::kNameField); }
  void SetNameField(std::string_view field) override {
    view().SetAndFlush(attributes::kNameField, field);
  }
  std::string IDField() override { return view().TextOrNothing(attributes::kIdField); }
  void SetIDField(std::string_view field) override {
    view().SetAndFlush(attributes::kIdField, field);
  }
  std::string CreationTime() override { return view().TextOrNothing(attributes::kCreationTime); }
  void SetCreationTime(std::string_view time) override {
    SetQuietly(attributes::kCreationTime, time);
  }
  std::string StudyAreaName() override { return view().TextOrNothing(attributes::kStudyAreaName); }
  void SetStudyAreaName(std::string_view name) override {
    SetQuietly(attributes::kStudyAreaName, name);
  }
  std::string Comments() override {
    return guard::Quiet(view().log(), [&] { return view().Comments(); });
  }
  void SetComments(std::string_view comments) override { view().SetComments(comments); }
  std::string GUID() override { return view().TextOrNothing(attributes::kGuid); }

  std::shared_ptr<Unknown> Facet(std::type_index interface_type) override {
    return layer_edit_.If(interface_type);
  }

 protected:
  using ParameterizedItem<Interface>::view;

  // Whether a layer of this kind has the name. Run-time error 91 without a data manager.
  virtual bool IsTaken(std::string_view name) = 0;

  // Without saving.
  void SetQuietly(const char* attribute, std::string_view value) {
    guard::Quiet(view().log(), [&] { view().Set(attribute, value); });
  }

  [[nodiscard]] GisCore& gis_core() const { return *gis_core_; }
  [[nodiscard]] LayerEdit& layer_edit() { return layer_edit_; }

 private:
  static constexpr char kTrue[] = "TRUE";
  static constexpr char kFalse[] = "FALSE";

  std::shared_ptr<GisCore> gis_core_;
  LayerEdit layer_edit_;
};

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
