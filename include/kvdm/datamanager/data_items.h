// Data items.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <kvdm/datamanager/name_list.h>
#include <kvdm/datamanager/unknown.h>
#include <kvdm/export.h>

namespace kvdm {

class IKVDataItem;

// Data items stand in two places: directly in the collection, where Create, Get by name and the
// Exists tests look, and in its group SADATACOLLECTION, where the lists, Get by GUID and both
// deletes look. Changes save.
class KVDM_EXPORT IKVDataCollection : public virtual Unknown {
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

class KVDM_EXPORT IKVDataItem : public virtual Unknown {
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

}  // namespace kvdm
