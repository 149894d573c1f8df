// The exchange of an item's description with the metadata of its layer.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include <kvdm/platform/gis_core.h>
#include <kvdm/platform/log.h>

namespace kvdm {

namespace metadata_paths {

inline constexpr char kRoot[] = "Velk/Kelvaro8/";
inline constexpr char kLayerType[] = "Velk/Kelvaro8/LayerType";
inline constexpr char kName[] = "Velk/Kelvaro8/Name";
inline constexpr char kGuid[] = "Velk/Kelvaro8/GUID";
inline constexpr char kComments[] = "Velk/Kelvaro8/Comments";
inline constexpr char kIdField[] = "Velk/Kelvaro8/IDField";
inline constexpr char kLinkField[] = "Velk/Kelvaro8/LinkField";
inline constexpr char kNameField[] = "Velk/Kelvaro8/NameField";
inline constexpr char kIsInternalData[] = "Velk/Kelvaro8/IsInternalData";
// Followed by the parameter's name.
inline constexpr char kAnalysisParameters[] = "Velk/Kelvaro8/AnalysisParams/";
// Of study areas.
inline constexpr char kType[] = "Velk/Kelvaro8/Type";
inline constexpr char kMainLayer[] = "Velk/Kelvaro8/MainLayer";
inline constexpr char kFeaturesList[] = "Velk/Kelvaro8/FeaturesList";

}  // namespace metadata_paths

// What stands under kLayerType.
namespace layer_types {

inline constexpr char kAnalysis[] = "Analysis Layer";
inline constexpr char kCustLayer[] = "Customer Layer";
inline constexpr char kStoreLayer[] = "Store Layer";
inline constexpr char kStudyArea[] = "Study Area";

}  // namespace layer_types

// Reads the layer's document, or makes an empty one when there is none, has `put` fill it, and
// writes it back. An error ends it quietly; the layer's metadata is then as before.
void ExportDocument(const std::shared_ptr<LayerMetadata>& metadata, GisCore& gis_core, Log* log,
                    const std::function<void(NamedValueSet&)>& put);

// The layer's document when it describes a layer of the kind `layer_type`; Nothing for another
// kind. Fails when the kind can't be read.
std::shared_ptr<NamedValueSet> ReadDocumentOf(const std::shared_ptr<LayerMetadata>& metadata,
                                              std::string_view layer_type);

// The first value under `path`. Run-time error 9 when there is none.
Value FirstValue(NamedValueSet& document, std::string_view path);
std::string FirstText(NamedValueSet& document, std::string_view path);

}  // namespace kvdm
