// The texts with which study areas report failures.
#pragma once

namespace kvdm::messages {

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

}  // namespace kvdm::messages
