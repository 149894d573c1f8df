// The fixed names of the folders in a working directory and in a study area.
#pragma once

namespace kvdm::sDefaultDirNames {

inline constexpr char kCustLayers[] = "CustLayers";
inline constexpr char kStoreLayers[] = "StoreLayers";
inline constexpr char kKelvaroTemp[] = "KelvaroTemp";
inline constexpr char kStudyAreas[] = "StudyAreas";
inline constexpr char kAnalyses[] = "Analyses";
inline constexpr char kTables[] = "Tables";
// The trailing blank belongs to it: numbers are appended directly.
inline constexpr char kStudyAreaPrefix[] = "Study Area ";

}  // namespace kvdm::sDefaultDirNames
