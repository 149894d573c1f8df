// Store and customer layers, and what analyses and study areas share with them: editing and the
// exchange of descriptions.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <kvdm/datamanager/name_list.h>
#include <kvdm/datamanager/unknown.h>
#include <kvdm/export.h>
#include <kvdm/platform/gis_core.h>

namespace kvdm {

class IKVStoreLayer;
class IKVCustLayer;

class KVDM_EXPORT IKVStoreLayerCollection : public virtual Unknown {
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

class KVDM_EXPORT IKVCustLayerCollection : public virtual Unknown {
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

class KVDM_EXPORT IKVCustLayer : public virtual Unknown {
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
class KVDM_EXPORT IKVStoreLayer : public virtual Unknown {
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

// Re-points or re-identifies a layer after editing. Both save, and do nothing on an object that is
// not fully bound.
class KVDM_EXPORT IKVLayerEdit : public virtual Unknown {
 public:
  virtual void SetLayerFile(std::string_view path) = 0;
  virtual void SetGUID(std::string_view guid) = 0;
};

// Copies an item's description into and out of the metadata of its layer. [quiet]
class KVDM_EXPORT IKVMetadata : public virtual Unknown {
 public:
  // Takes over identifier, comments, fields and parameters, never the name, if the metadata
  // describes an item of this kind.
  virtual void ImportMetadata(const std::shared_ptr<LayerMetadata>& metadata) = 0;
  // Writes name, identifier, comments, fields and parameters; leaves all else that is there.
  virtual void ExportMetadata(const std::shared_ptr<LayerMetadata>& metadata) = 0;
};

}  // namespace kvdm
