// The texts with which items report failures.
#pragma once

namespace kvdm::messages {

// Parameters. The layers and, for its list, the data item speak of the analysis as well.
inline constexpr char kSetParameter[] = "Error while setting parameter of analysis";
inline constexpr char kSetDataItemParameter[] = "Error while setting parameter of Dataitem";
inline constexpr char kParametersList[] =
    "Kelvaro Data Manager: Couldn't get analysis parameters list";

inline constexpr char kRenameAnalysis[] = "Kelvaro Data Manager: Couldn't rename the Analysis";

// Layer editing. The store layer speaks of the customer layer.
inline constexpr char kAnalysisLayerFile[] =
    "Kelvaro Data Manager: Couldn't change the Analysis Layer layer file";
inline constexpr char kAnalysisGuid[] =
    "Kelvaro Data Manager: Couldn't change the Analysis Layer GUID";
inline constexpr char kLayerFile[] =
    "Kelvaro Data Manager: Couldn't change the Customer Layer layer file";
inline constexpr char kLayerGuid[] =
    "Kelvaro Data Manager: Couldn't change the Customer Layer GUID";

}  // namespace kvdm::messages
