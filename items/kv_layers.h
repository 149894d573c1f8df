// Store and customer layers, over their STORELAYER and CUSTLAYER elements.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <kvdm/datamanager/layers.h>

#include "items/element_view.h"
#include "items/metadata_exchange.h"
#include "util/kvdm_utils.h"
#include "util/names.h"

namespace kvdm {

inline constexpr LayerEditMessages kLayerEditTexts = {messages::kLayerFile, messages::kLayerGuid};

// What both share, on top of their own interfaces.
template <class Interface>
class LayerView : public ParameterizedItem<Interface>, public IKVMetadata {
 public:
  // `type` is what the metadata of such a layer say they describe.
  LayerView(ReportStyle reports, const char* type, std::shared_ptr<GisCore> gis_core)
      : ParameterizedItem<Interface>({reports, messages::kSetParameter}),
        type_(type),
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

  void ExportMetadata(const std::shared_ptr<LayerMetadata>& metadata) override {
    ExportDocument(metadata, *gis_core_, view().log(), [&](NamedValueSet& document) {
      document.PutValue(metadata_paths::kLayerType, type_);
      document.PutValue(metadata_paths::kName, Name());
      document.PutValue(metadata_paths::kGuid, GUID());
      document.PutValue(metadata_paths::kIdField, IDField());
      if constexpr (kHasLinkField) {
        document.PutValue(metadata_paths::kLinkField, this->LinkField());
      }
      document.PutValue(metadata_paths::kNameField, NameField());
      document.PutValue(metadata_paths::kComments, Comments());
      document.PutValue(metadata_paths::kIsInternalData, IsInternalData());
    });
  }
  void ImportMetadata(const std::shared_ptr<LayerMetadata>& metadata) override {
    guard::Quiet(view().log(), [&] {
      const auto document = ReadDocumentOf(metadata, type_);
      if (!document) return;
      SetIDField(FirstText(*document, metadata_paths::kIdField));
      if constexpr (kHasLinkField) {
        this->SetLinkField(FirstText(*document, metadata_paths::kLinkField));
      }
      SetNameField(FirstText(*document, metadata_paths::kNameField));
      SetComments(FirstText(*document, metadata_paths::kComments));
      layer_edit_.SetGUID(FirstText(*document, metadata_paths::kGuid));
      SetIsInternalData(ToBoolean(FirstValue(*document, metadata_paths::kIsInternalData)));
    });
  }

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

 private:
  static constexpr char kTrue[] = "TRUE";
  static constexpr char kFalse[] = "FALSE";
  static constexpr bool kHasLinkField = requires(Interface & layer) { layer.LinkField(); };

  const char* type_;
  std::shared_ptr<GisCore> gis_core_;
  LayerEdit layer_edit_;
};

class KVCustLayer final : public LayerView<IKVCustLayer> {
 public:
  explicit KVCustLayer(std::shared_ptr<GisCore> gis_core)
      : LayerView(ReportStyle::kByName, layer_types::kCustLayer, std::move(gis_core)) {}

  std::string LinkField() override;
  void SetLinkField(std::string_view field) override;

 private:
  bool IsTaken(std::string_view name) override;
};

class KVStoreLayer final : public LayerView<IKVStoreLayer> {
 public:
  explicit KVStoreLayer(std::shared_ptr<GisCore> gis_core)
      : LayerView(ReportStyle::kShown, layer_types::kStoreLayer, std::move(gis_core)) {}

  void SetLayerFile(std::string_view path) override;

 private:
  bool IsTaken(std::string_view name) override;
};

}  // namespace kvdm
