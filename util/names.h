// Fixed names: elements and attributes of the three documents, upper case and matched exactly, and
// folders; properties of the host.
#pragma once

namespace kvdm::tags {

inline constexpr char kMetadataRoot[] = "KVDATACOLLECTION";
inline constexpr char kStudyAreaCollection[] = "STUDYAREACOLLECTION";
inline constexpr char kAnalysisCollection[] = "ANALYSISCOLLECTION";
inline constexpr char kCustLayerCollection[] = "CUSTLAYERCOLLECTION";
inline constexpr char kStoreLayerCollection[] = "STORELAYERCOLLECTION";
inline constexpr char kDataCollection[] = "DATACOLLECTION";
inline constexpr char kCustomerCollection[] = "CUSTOMERCOLLECTION";
inline constexpr char kStoreCollection[] = "STORECOLLECTION";
inline constexpr char kLayerCollection[] = "LAYERCOLLECTION";

inline constexpr char kStudyArea[] = "STUDYAREA";
inline constexpr char kAnalysis[] = "ANALYSIS";
inline constexpr char kCustLayer[] = "CUSTLAYER";
inline constexpr char kStoreLayer[] = "STORELAYER";
inline constexpr char kDataItem[] = "DATAITEM";

inline constexpr char kDataGroup[] = "SADATACOLLECTION";
inline constexpr char kStudyAreaProperties[] = "SAPROPERTIES";
inline constexpr char kProperty[] = "PROPERTY";
inline constexpr char kParameter[] = "PARAM";
inline constexpr char kComments[] = "COMMENTS";
inline constexpr char kLinkField[] = "LINKFIELD";

}  // namespace kvdm::tags

namespace kvdm::attributes {

inline constexpr char kName[] = "NAME";
inline constexpr char kGuid[] = "GUID";
inline constexpr char kDirName[] = "DIRNAME";
inline constexpr char kLayerFile[] = "LAYERFILE";
inline constexpr char kCreationTime[] = "CREATIONTIME";
inline constexpr char kDataset[] = "DATASET";
inline constexpr char kValue[] = "VALUE";
inline constexpr char kFile[] = "FILE";
inline constexpr char kPathType[] = "PATHTYPE";
inline constexpr char kAdditionalInfo[] = "ADDITIONALINFO";
inline constexpr char kNameField[] = "NAMEFIELD";
inline constexpr char kIdField[] = "IDFIELD";
inline constexpr char kLinkField[] = "LINKFIELD";
inline constexpr char kStudyAreaName[] = "STUDYAREANAME";
inline constexpr char kIsInternalData[] = "ISINTERNALDATA";
inline constexpr char kShapeFile[] = "SHAPEFILE";
inline constexpr char kIsInternal[] = "ISINTERNAL";

}  // namespace kvdm::attributes

// How PATHTYPE tells the form of a file path.
namespace kvdm::path_types {

inline constexpr char kRelative[] = "RELATIVE";
inline constexpr char kAbsolute[] = "ABSOLUTE";

}  // namespace kvdm::path_types

// The folders of a working directory and of a study area.
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

namespace kvdm {

// Properties of the host: the working directory, of its settings, and the name of the current study
// area, of what is open.
inline constexpr char kWorkingDirectorySetting[] = "VELKKVDirectory";
inline constexpr char kStudyAreaNameProperty[] = "Study Area Name";

}  // namespace kvdm
