// The texts with which collections report failures.
#pragma once

namespace kvdm::messages {

// Every collection names its folders by its own copy of one rule.
inline constexpr char kNewDirName[] = "Couldn't generate new Dir NAme";

inline constexpr char kAnalysesList[] = "Couldn't get Analyses list for the study area";
inline constexpr char kCreateAnalysis[] = "Kelvaro Data Manager: Couldn't create Analysis";
inline constexpr char kDeleteAnalysis[] = "Couldn't delete Analysis";
inline constexpr char kGetAnalysis[] = "Kelvaro Data Manager: Couldn't get Analysis Object";

inline constexpr char kStudyAreasList[] = "Couldn't get StudyAreas list for the study area";
inline constexpr char kCreateStudyArea[] = "Kelvaro Data Manager: Couldn't create StudyArea";
inline constexpr char kDeleteStudyArea[] = "Couldn't delete StudyArea";
inline constexpr char kGetStudyArea[] = "Kelvaro Data Manager: Couldn't get StudyArea Object";

inline constexpr char kStoreLayersList[] = "Couldn't get StoreLayers list for the study area";
inline constexpr char kCreateStoreLayer[] = "Kelvaro Data Manager: Couldn't create StoreLayer";
inline constexpr char kDeleteStoreLayer[] = "Couldn't delete StoreLayer";
inline constexpr char kGetStoreLayer[] = "Kelvaro Data Manager: Couldn't get StoreLayer Object";

inline constexpr char kCustLayersList[] = "Couldn't get CustLayers list for the study area";
inline constexpr char kCreateCustLayer[] = "Kelvaro Data Manager: Couldn't create CustLayer";
inline constexpr char kDeleteCustLayer[] = "Couldn't delete CustLayer";
inline constexpr char kGetCustLayer[] = "Kelvaro Data Manager: Couldn't get CustLayer Object";

inline constexpr char kDataDir[] = "Couldn't get Data Dir";
inline constexpr char kDataList[] = "Couldn't get Data List for the study area";
inline constexpr char kGetDataItem[] = "Couldn't get Data item shape file";
inline constexpr char kCreateDataItem[] = "Couldn't Create Data";
inline constexpr char kDeleteDataItem[] = "Couldn't Delete Data";

}  // namespace kvdm::messages
