// The component's messages, exactly as they are shown.
#pragma once

namespace kvdm::messages {

// Parameters of items. The layers and, for its list, the data item speak of the analysis as well.
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

// Collections, and the data manager for its own folders.
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

// Study areas.
inline constexpr char kRenameStudyArea[] =
    "Kelvaro Data Manager: Couldn't change the study area name";
inline constexpr char kStudyAreaGuid[] = "Can't find the attribute GUID";
inline constexpr char kStudyAreaDataset[] = "Can't find the attribute DATASET";
inline constexpr char kSetStudyAreaDataset[] =
    "Kelvaro Data Manager: Couldn't change the study area datasetname";
inline constexpr char kSetStudyAreaLayerFile[] =
    "Kelvaro Data Manager: Couldn't change the study area layer file";
inline constexpr char kSetStudyAreaGuid[] =
    "Kelvaro Data Manager: Couldn't change the Study Area GUID";
inline constexpr char kSetStudyAreaDir[] =
    "Kelvaro Data Manager: Couldn't change the study area folder";
inline constexpr char kStudyAreaTablesDir[] = "Couldn't get TableDir for the Study area";
inline constexpr char kFreeTablePath[] = "Failed to get free table path for the Study Area";

// The property's name stands between the two halves.
inline constexpr char kCannotFindProperty[] = "Can't find ";
inline constexpr char kCannotSetProperty[] = "Couldn't set ";
inline constexpr char kPropertyEnd[] = " property";

// The data manager.
inline constexpr char kCaption[] = "Kelvaro";

// Start-up and working directory.
inline constexpr char kPresetDirectory[] = "Couldn't read the preset data directory";
inline constexpr char kWorkingDirectorySettings[] = "Cannot read working directory settings";
inline constexpr char kInvalidWorkingDirectorySelected[] = "Invalid Working Directory was selected";
inline constexpr char kInvalidWorkingDirectory[] = "Invalid Working Directory";
inline constexpr char kWorkingDirectoryStructure[] =
    "Couldn't create structure of working directory";
// Followed by the error's number and description, nothing between.
inline constexpr char kSaving[] = "error while saving XML  ";

// Preset data and temporary files.
inline constexpr char kPresetList[] = "Couldn't get Preset Data list";
inline constexpr char kPresetFile[] = "Couldn't get Preset Data shape file name";
inline constexpr char kReload[] = "Couldn't read the study areas again";
inline constexpr char kTempFile[] = "Couldn't generate new Temp file name";

// Accessors.
inline constexpr char kAnalysisCollection[] = "Cannot get analysis collection from metadata";
inline constexpr char kStudyAreaCollection[] = "Cannot get Study Area Collection from metadata";
inline constexpr char kStoreLayerCollection[] = "Cannot get Store Layer Collection from metadata";
inline constexpr char kCustLayerCollection[] = "Cannot get Cust Layer Collection from metadata";
inline constexpr char kDataCollection[] = "Cannot get Data Collection from metadata";
inline constexpr char kTablesManager[] = "Cannot create TablesManager";

}  // namespace kvdm::messages

// The registry of study areas and layers.
namespace kvdm::messages::areas {

// Two blanks, as it is shown.
inline constexpr char kNoStudyAreasToList[] = "Tag STUDYAREACOLLECTION  was not found in Data.xml";
inline constexpr char kNoStudyAreas[] = "Couldn't find STUDYAREACOLLECTION Tag in XML";
inline constexpr char kNoDocumentElement[] = "Couldn't find document Element in the XML";

inline constexpr char kListStudyAreas[] = "Couldn't get Study Areas list";
inline constexpr char kCreateStudyArea[] = "Couldn't create study area";
inline constexpr char kDeleteStudyArea[] = "Couldn't delete study area";
inline constexpr char kGetStudyArea[] = "Couldn't get Study Area object";

inline constexpr char kListCustLayers[] = "Couldn't get Customer layers list";
inline constexpr char kRegisterCustLayer[] = "Couldn't register Customer layer";
inline constexpr char kUnregisterCustLayer[] = "Couldn't unregister Customer layer";
// Speaks of the list, and spells it otherwise than the list's own message.
inline constexpr char kGetCustLayer[] = "Couldn't get customer layers list";
inline constexpr char kCustLayerExists[] = "Error in CustLayerExists";
inline constexpr char kCustLayerExistsByGuid[] = "Error in CustLayerExistsByGUID";

inline constexpr char kListStoreLayers[] = "Couldn't get Store layers list";
inline constexpr char kRegisterStoreLayer[] = "Couldn't register Store layer";
inline constexpr char kUnregisterStoreLayer[] = "Couldn't unregister Store layer";
inline constexpr char kGetStoreLayer[] = "Couldn't get Store Layer object";
inline constexpr char kStoreLayerExists[] = "Error in StoreLayerExists";
inline constexpr char kStoreLayerExistsByGuid[] = "Error in StoreLayerExistsByGUID";

inline constexpr char kWriteAlias[] = "Failed to write registry key";

}  // namespace kvdm::messages::areas
