/// @file
/// Interfaces of the data items.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <kvdm/datamanager/name_list.h>
#include <kvdm/datamanager/unknown.h>
#include <kvdm/export.h>

namespace kvdm {

class IKVDataItem;

/// The data items: names for data files in the folder "Data" of the working directory.
///
/// Data items stand in two places of the metadata document: directly in the collection, where
/// CreateDataItem, GetDataItem and the two Exists operations look, and in its group
/// SADATACOLLECTION, which the component never makes, where the lists, GetDataItemByGUID and both
/// deletes look. Names are stored as given. Reports end in 438.
class KVDM_EXPORT IKVDataCollection : public virtual Unknown {
 public:
  /// The names of the data items in the group; Null for one without a name. 438 without a group.
  virtual NameListRef DataItemsList() = 0;

  /// A view of the first data item of that name that stands directly in the collection; Nothing
  /// when there is none. 438 for a double quote in the name.
  virtual std::shared_ptr<IKVDataItem> GetDataItem(std::string_view name) = 0;

  /// Adds a data item directly to the collection, with a base name that is free in the data folder,
  /// which it makes; the host is to write the file. Saves. False when one there has the name. 438
  /// for a double quote in the name, a name that is too long, and a folder that can't be made or
  /// listed; then nothing is added, though the folder may have been made.
  virtual bool CreateDataItem(std::string_view name) = 0;

  /// Removes the first data item of that name from the group; its file stays. Saves. False when
  /// there is none. 438 without a group, and for a double quote in the name; then nothing is
  /// removed.
  virtual bool DeleteDataItem(std::string_view name) = 0;

  /// Whether a data item directly in the collection has the name with an underscore at each end; so
  /// it finds none that CreateDataItem made of the same name. Errors: -2147467259.
  virtual bool DataItemExists(std::string_view name) = 0;

  /// The identifiers of the data items in the group; Null for one without. 438 without a group.
  virtual NameListRef DataItemsGUIDsList() = 0;

  /// A view of the data item in the group; Nothing when there is none. 438 without a group, and for
  /// a double quote in the identifier.
  virtual std::shared_ptr<IKVDataItem> GetDataItemByGUID(std::string_view guid) = 0;

  /// As DeleteDataItem, by identifier.
  virtual bool DeleteDataItemByGUID(std::string_view guid) = 0;

  /// Whether a data item directly in the collection has the identifier. Errors: -2147467259.
  virtual bool DataItemExistsByGUID(std::string_view guid) = 0;

  /// The data folder, the working directory's "Data"; makes it when it is missing, not the folders
  /// around it. 438 when it can't be made.
  virtual std::string DataItemsDir() = 0;
};

/// One data item. It has no folder, comment or metadata of its own. Reports end in 438.
class KVDM_EXPORT IKVDataItem : public virtual Unknown {
 public:
  /// The name as stored; "" when there is none. Quiet.
  virtual std::string Name() = 0;

  /// Stores the name as given, also one that another data item has. Saves. Errors: 7.
  virtual void SetName(std::string_view name) = 0;

  /// The path of the data file. One that CreateDataItem chose is completed with the data folder,
  /// which is then made, and has no extension; one that was set comes back as given. "" when none
  /// is stored. Quiet.
  virtual std::string LayerFile() = 0;

  /// Stores the path as given and marks it as absolute. Saves. Errors: 7.
  virtual void SetLayerFile(std::string_view path) = 0;

  /// The additional information; "" when none is stored. Quiet.
  virtual std::string AdditionalInfo() = 0;

  /// Stores the text as given. Saves. Errors: 7.
  virtual void SetAdditionalInfo(std::string_view info) = 0;

  /// Sets a named parameter, as IKVAnalysis::SetParameter does. Saves. 438 in the same cases.
  virtual bool SetParameter(std::string_view name, std::string_view value) = 0;

  /// The value of the first parameter of that name; "" when there is none or it has no value.
  /// Quiet.
  virtual std::string GetParameter(std::string_view name) = 0;

  /// The names of all parameters, repeated ones included; Null for one without a name. 438 when
  /// memory runs out.
  virtual NameListRef ParametersList() = 0;

  /// Removes all parameters. True, also when there were none. Saves. Quiet: after a failure those
  /// removed so far are gone, and nothing is saved.
  virtual bool ClearParametersList() = 0;

  /// The identifier; "" when none is stored. Quiet.
  virtual std::string GUID() = 0;
};

}  // namespace kvdm
