// The texts that the data manager shows.
#pragma once

namespace kvdm::messages {

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
inline constexpr char kNewFolderName[] = "Couldn't generate new Dir NAme";

// Preset data and temporary files.
inline constexpr char kPresetList[] = "Couldn't get Preset Data list";
inline constexpr char kPresetFile[] = "Couldn't get Preset Data shape file name";
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
