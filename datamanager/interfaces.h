// Every public interface of the component, its operations in slot order: the map of the boundary.
//
// Conventions. Texts are UTF-8 and never modified. Of a property pair the get stands before the
// let: Name(), then SetName(). A list is Nothing when its element can't be reached, and empty when
// there is nothing in it. A Get... operation returns Nothing for what is not there; create and
// delete operations return True only on success. Objects are views: they hold no data, and two
// views of one element always agree. All calls come from the host's one thread.
//
// Failures. An operation of the data manager or of a study area shows a message and returns its
// neutral result: False,
// "", Nothing. An operation of another class whose failure is to be reported ends in run-time error
// 438, with the message and the cause attached. Operations marked [errors] pass errors on
// unchanged; those marked [quiet] trap them and return the neutral result.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "datamanager/name_list.h"
#include "datamanager/unknown.h"
#include "platform/gis_core.h"
#include "platform/host.h"
#include "platform/siblings.h"
#include "platform/value.h"

namespace kvdm {

using NameListRef = std::shared_ptr<NameList>;

class IKVDataItem;
class IKVStudyArea;
class IKVAnalysis;
class IKVCustLayer;
class IKVStoreLayer;
class IKVStudyAreaCollection;
class IKVAnalysisCollection;
class IKVStoreLayerCollection;
class IKVCustLayerCollection;
class IKVDataCollection;
class IKVTablesManager;

// The root object. No error ever reaches its caller; each failure shows a message.
class IKVDataManager : public virtual Unknown {
 public:
  // The working directory with a trailing "\"; "" until one is set.
  virtual std::string WorkingDirectory() = 0;
  // Appends "\" and makes doubled backslashes single, creates the folder with its sub-folders when
  // it is missing (the metadata then starts afresh), and cleans the temporary folder.
  virtual void SetWorkingDirectory(std::string_view path) = 0;
  virtual std::shared_ptr<DatasetManager> GetDatasetManager() = 0;
  // Writes the study area catalogue to the registry. Always False.
  virtual bool Flush() = 0;
  // A free path in the temporary folder, without extension; creates the folder, hidden, but not the
  // file.
  virtual std::string TmpFilePath() = 0;
  // Empties the temporary folder; what can't be deleted stays. [quiet]
  virtual void CleanTemp() = 0;
  virtual std::shared_ptr<IKVAnalysisCollection> AnalysisCollection() = 0;
  virtual std::shared_ptr<IKVDataCollection> DataCollection() = 0;
  virtual std::shared_ptr<IKVStudyAreaCollection> StudyAreaCollection() = 0;
  virtual std::shared_ptr<IKVTablesManager> TablesManager() = 0;
  virtual std::shared_ptr<IKVCustLayerCollection> CustLayerCollection() = 0;
  virtual std::shared_ptr<IKVStoreLayerCollection> StoreLayerCollection() = 0;
  // The names of the preset data items; Nothing after a failed start-up.
  virtual NameListRef PDataList() = 0;
  // The full path of a preset data item's file; "" for an unknown name.
  virtual std::string GetPDataFile(std::string_view name) = 0;
};

class IKVDMInitialize : public virtual Unknown {
 public:
  // Settles the working directory from the host's setting "VELKKVDirectory"; without a host only
  // forgets the last one.
  virtual void DMInitialize(const std::shared_ptr<Host>& host) = 0;
};

// The persistence of the GIS core library: one object's values in the host's saved document.
class IPersistVariant : public virtual Unknown {
 public:
  // An identifier that holds the class identity.
  virtual std::shared_ptr<Identifier> ID() = 0;
  // Reads one value and makes it the metadata document; a text that is not well-formed leaves none.
  // [quiet]
  virtual void Load(const std::shared_ptr<VariantStream>& stream) = 0;
  // Writes the metadata document as one value, then flushes. [quiet]
  virtual void Save(const std::shared_ptr<VariantStream>& stream) = 0;
};

class IKVStudyAreaCollection : public virtual Unknown {
 public:
  // Leaves out the study area "Default".
  virtual NameListRef StudyAreasList() = 0;
  // False for a name that exists, and when the folder could not be made; the study area is then
  // there all the same. Saves.
  virtual bool CreateStudyArea(std::string_view name) = 0;
  // Removes the study area and its folder, and closes it when it is the current one. Saves.
  virtual bool DeleteStudyArea(std::string_view name) = 0;
  virtual std::shared_ptr<IKVStudyArea> GetStudyArea(std::string_view name) = 0;
  virtual bool StudyAreaExists(std::string_view name) = 0;  // [errors]
  virtual NameListRef StudyAreasGUIDsList() = 0;
  // Leaves the current study area open, and removes a folder only if DIRNAME is relative to
  // "StudyAreas". Saves.
  virtual bool DeleteStudyAreaByGUID(std::string_view guid) = 0;
  virtual std::shared_ptr<IKVStudyArea> GetStudyAreaByGUID(std::string_view guid) = 0;
  virtual bool StudyAreaExistsByGUID(std::string_view guid) = 0;  // [errors]
};

// One study area. Setters save; a setter on an unbound object does nothing.
class IKVStudyArea : public virtual Unknown {
 public:
  virtual std::string Name() = 0;  // [errors]
  // Keeps the old name when the new one is taken. Moves no files.
  virtual void SetName(std::string_view name) = 0;
  virtual std::string LayerFile() = 0;     // [quiet]
  virtual std::string StudyAreaDir() = 0;  // [quiet]
  // Line ends come back as CR LF. [quiet]
  virtual std::string Comments() = 0;
  virtual void SetComments(std::string_view comments) = 0;
  virtual std::string Dataset() = 0;
  virtual void SetDataset(std::string_view dataset) = 0;
  virtual std::string GUID() = 0;
};

class IKVStudyArea2 : public virtual Unknown {
 public:
  virtual void SetStudyAreaDir(std::string_view folder) = 0;
};

// The free-form properties of a study area.
class IKVPropertySet : public virtual Unknown {
 public:
  // Always 0.
  virtual int Count() = 0;
  // The value; "" when there is none, Null when it was stored without one.
  virtual Value GetProperty(std::string_view name) = 0;
  // Saves when the property is new; a changed value waits for the next save.
  virtual bool SetProperty(std::string_view name, const Value& value) = 0;
};

class IKVTablesManager : public virtual Unknown {
 public:
  // The tables folder of the current study area, else of the working directory, without a trailing
  // "\". [errors]
  virtual std::string TablesDir() = 0;
  // A free path there, without extension; creates the folder.
  virtual std::string FreeTablePath() = 0;
};

// Splits a path at "\" and ".". Touches no file. Everything but FullPath fails with run-time error
// 5 on an empty path.
class IKVFileInfo : public virtual Unknown {
 public:
  virtual std::string ParentDirPath() = 0;      // [errors]
  virtual std::string FileName() = 0;           // [errors]
  virtual std::string FileNameExtension() = 0;  // [errors]
  virtual std::string FullPath() = 0;
  virtual void SetFullPath(std::string_view path) = 0;
};

class IKVAnalysisCollection : public virtual Unknown {
 public:
  virtual NameListRef AnalysesList() = 0;
  // Adds one also when the name exists; False when only its folder could not be made. Saves
  // nothing.
  virtual bool CreateAnalysis(std::string_view name) = 0;
  // Removes the first of that name, and its folder. Saves nothing.
  virtual bool DeleteAnalysis(std::string_view name) = 0;
  virtual std::shared_ptr<IKVAnalysis> GetAnalysis(std::string_view name) = 0;
  virtual bool AnalysisExists(std::string_view name) = 0;  // [errors]
  virtual NameListRef AnalysesGUIDsList() = 0;
  virtual bool DeleteAnalysisByGUID(std::string_view guid) = 0;
  virtual std::shared_ptr<IKVAnalysis> GetAnalysisByGUID(std::string_view guid) = 0;
  virtual bool AnalysisExistsByGUID(std::string_view guid) = 0;  // [errors]
};

class IKVStoreLayerCollection : public virtual Unknown {
 public:
  virtual NameListRef StoreLayersList() = 0;
  // False for a name that exists. Reserves a layer file path; writes no file and saves nothing.
  virtual bool CreateStoreLayer(std::string_view name) = 0;
  // Leaves the layer file.
  virtual bool DeleteStoreLayer(std::string_view name) = 0;
  virtual std::shared_ptr<IKVStoreLayer> GetStoreLayer(std::string_view name) = 0;
  virtual bool StoreLayerExists(std::string_view name) = 0;  // [errors]
  virtual NameListRef StoreLayersGUIDsList() = 0;
  // Deletes the folder that DIRNAME names below "StoreLayers"; without DIRNAME the whole
  // "StoreLayers" folder.
  virtual bool DeleteStoreLayerByGUID(std::string_view guid) = 0;
  virtual std::shared_ptr<IKVStoreLayer> GetStoreLayerByGUID(std::string_view guid) = 0;
  virtual bool StoreLayerExistsByGUID(std::string_view guid) = 0;  // [errors]
  // The layers folder without a trailing "\"; creates it. [errors]
  virtual std::string StoreLayersDir() = 0;
};

class IKVCustLayerCollection : public virtual Unknown {
 public:
  virtual NameListRef CustLayersList() = 0;
  // False for a name that exists. Reserves a layer file path; writes no file and saves nothing.
  virtual bool CreateCustLayer(std::string_view name) = 0;
  // Both deletes leave the layer file.
  virtual bool DeleteCustLayer(std::string_view name) = 0;
  virtual std::shared_ptr<IKVCustLayer> GetCustLayer(std::string_view name) = 0;
  virtual bool CustLayerExists(std::string_view name) = 0;  // [errors]
  virtual NameListRef CustLayersGUIDsList() = 0;
  virtual bool DeleteCustLayerByGUID(std::string_view guid) = 0;
  virtual std::shared_ptr<IKVCustLayer> GetCustLayerByGUID(std::string_view guid) = 0;
  virtual bool CustLayerExistsByGUID(std::string_view guid) = 0;  // [errors]
  // The layers folder without a trailing "\"; creates it. [errors]
  virtual std::string CustLayersDir() = 0;
};

// Data items stand in two places: directly in the collection, where Create, Get by name and the
// Exists tests look, and in its group SADATACOLLECTION, where the lists, Get by GUID and both
// deletes look. Changes save.
class IKVDataCollection : public virtual Unknown {
 public:
  virtual NameListRef DataItemsList() = 0;
  virtual std::shared_ptr<IKVDataItem> GetDataItem(std::string_view name) = 0;
  virtual bool CreateDataItem(std::string_view name) = 0;
  virtual bool DeleteDataItem(std::string_view name) = 0;
  // Looks for the name between underscores. [errors]
  virtual bool DataItemExists(std::string_view name) = 0;
  virtual NameListRef DataItemsGUIDsList() = 0;
  virtual std::shared_ptr<IKVDataItem> GetDataItemByGUID(std::string_view guid) = 0;
  virtual bool DeleteDataItemByGUID(std::string_view guid) = 0;
  virtual bool DataItemExistsByGUID(std::string_view guid) = 0;  // [errors]
  // The data folder with a trailing "\"; creates it.
  virtual std::string DataItemsDir() = 0;
};

class IKVAnalysis : public virtual Unknown {
 public:
  virtual std::string Name() = 0;  // [errors]
  // Keeps the old name when the new one is taken. Does not save.
  virtual void SetName(std::string_view name) = 0;
  virtual std::string LayerFile() = 0;                      // [quiet]
  virtual void SetLayerFile(std::string_view path) = 0;     // [errors] Saves.
  virtual std::string Comments() = 0;                       // [quiet] Line ends come back as CR LF.
  virtual void SetComments(std::string_view comments) = 0;  // [errors] Saves.
  virtual std::string CreationTime() = 0;                   // [quiet]
  virtual void SetCreationTime(std::string_view time) = 0;  // [quiet] Does not save.
  virtual std::string AnalysisDir() = 0;                    // [quiet]
  virtual bool SetParameter(std::string_view name, std::string_view value) = 0;  // Saves.
  virtual std::string GetParameter(std::string_view name) = 0;                   // [quiet]
  virtual NameListRef ParametersList() = 0;
  virtual bool ClearParametersList() = 0;  // [quiet] Saves.
  virtual std::string AnalysisGUID() = 0;  // [quiet]
  // Puts the parameters, then "Name" and "Comments"; makes a set when given none. [quiet]
  virtual bool WriteToPropertySet(std::shared_ptr<NamedValueSet>& set) = 0;
  // Applies every entry it can: "Name", "Comments", any other as a parameter. [quiet]
  virtual bool ReadFromPropertySet(const std::shared_ptr<NamedValueSet>& set) = 0;
};

class IKVCustLayer : public virtual Unknown {
 public:
  virtual std::string Name() = 0;  // [quiet]
  // Keeps the old name when a customer layer has the new one. Saves. [errors]
  virtual void SetName(std::string_view name) = 0;
  virtual std::string LayerFile() = 0;                       // [quiet]
  virtual void SetLayerFile(std::string_view path) = 0;      // [errors] Saves.
  virtual bool IsInternalData() = 0;                         // [quiet]
  virtual void SetIsInternalData(bool internal) = 0;         // [quiet] Does not save.
  virtual std::string NameField() = 0;                       // [quiet]
  virtual void SetNameField(std::string_view field) = 0;     // [errors] Saves.
  virtual std::string IDField() = 0;                         // [quiet]
  virtual void SetIDField(std::string_view field) = 0;       // [errors] Saves.
  virtual std::string LinkField() = 0;                       // [quiet]
  virtual void SetLinkField(std::string_view field) = 0;     // [quiet] Does not save.
  virtual std::string CreationTime() = 0;                    // [quiet]
  virtual void SetCreationTime(std::string_view time) = 0;   // [quiet] Does not save.
  virtual std::string StudyAreaName() = 0;                   // [quiet]
  virtual void SetStudyAreaName(std::string_view name) = 0;  // [quiet] Does not save.
  virtual std::string Comments() = 0;                       // [quiet] Line ends come back as CR LF.
  virtual void SetComments(std::string_view comments) = 0;  // [errors] Saves.
  virtual bool SetParameter(std::string_view name, std::string_view value) = 0;  // Saves.
  virtual std::string GetParameter(std::string_view name) = 0;                   // [quiet]
  virtual NameListRef ParametersList() = 0;
  virtual bool ClearParametersList() = 0;  // [quiet] Saves.
  virtual std::string GUID() = 0;          // [quiet]
};

// As IKVCustLayer without LinkField; its reports are shown, not raised.
class IKVStoreLayer : public virtual Unknown {
 public:
  virtual std::string Name() = 0;  // [quiet]
  // Keeps the old name when a store layer has the new one. Saves. [errors]
  virtual void SetName(std::string_view name) = 0;
  virtual std::string LayerFile() = 0;  // [quiet]
  // Marks the path as absolute. Saves. [errors]
  virtual void SetLayerFile(std::string_view path) = 0;
  virtual bool IsInternalData() = 0;                         // [quiet]
  virtual void SetIsInternalData(bool internal) = 0;         // [quiet] Does not save.
  virtual std::string NameField() = 0;                       // [quiet]
  virtual void SetNameField(std::string_view field) = 0;     // [errors] Saves.
  virtual std::string IDField() = 0;                         // [quiet]
  virtual void SetIDField(std::string_view field) = 0;       // [errors] Saves.
  virtual std::string CreationTime() = 0;                    // [quiet]
  virtual void SetCreationTime(std::string_view time) = 0;   // [quiet] Does not save.
  virtual std::string StudyAreaName() = 0;                   // [quiet]
  virtual void SetStudyAreaName(std::string_view name) = 0;  // [quiet] Does not save.
  virtual std::string Comments() = 0;                       // [quiet] Line ends come back as CR LF.
  virtual void SetComments(std::string_view comments) = 0;  // [errors] Saves.
  virtual bool SetParameter(std::string_view name, std::string_view value) = 0;  // Saves.
  virtual std::string GetParameter(std::string_view name) = 0;                   // [quiet]
  virtual NameListRef ParametersList() = 0;
  virtual bool ClearParametersList() = 0;  // [quiet] Saves.
  virtual std::string GUID() = 0;          // [quiet]
};

class IKVDataItem : public virtual Unknown {
 public:
  virtual std::string Name() = 0;                   // [quiet]
  virtual void SetName(std::string_view name) = 0;  // [errors] Saves. Names need not be unique.
  // The full path: a relative one is completed with the data folder. [quiet]
  virtual std::string LayerFile() = 0;
  virtual void SetLayerFile(
      std::string_view path) = 0;            // [errors] Marks the path as absolute. Saves.
  virtual std::string AdditionalInfo() = 0;  // [quiet]
  virtual void SetAdditionalInfo(std::string_view info) = 0;                     // [errors] Saves.
  virtual bool SetParameter(std::string_view name, std::string_view value) = 0;  // Saves.
  virtual std::string GetParameter(std::string_view name) = 0;                   // [quiet]
  virtual NameListRef ParametersList() = 0;
  virtual bool ClearParametersList() = 0;  // [quiet] Saves.
  virtual std::string GUID() = 0;          // [quiet]
};

// Re-points or re-identifies a layer after editing. Both save, and do nothing on an object that is
// not fully bound.
class IKVLayerEdit : public virtual Unknown {
 public:
  virtual void SetLayerFile(std::string_view path) = 0;
  virtual void SetGUID(std::string_view guid) = 0;
};

// Copies an item's description into and out of the metadata of its layer. [quiet]
class IKVMetadata : public virtual Unknown {
 public:
  // Takes over identifier, comments, fields and parameters, never the name, if the metadata
  // describes an item of this kind.
  virtual void ImportMetadata(const std::shared_ptr<LayerMetadata>& metadata) = 0;
  // Writes name, identifier, comments, fields and parameters; leaves all else that is there.
  virtual void ExportMetadata(const std::shared_ptr<LayerMetadata>& metadata) = 0;
};

}  // namespace kvdm
