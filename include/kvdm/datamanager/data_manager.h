/// @file
/// Interfaces of the root object: the data manager, its start and its persistence.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <kvdm/datamanager/name_list.h>
#include <kvdm/datamanager/unknown.h>
#include <kvdm/export.h>
#include <kvdm/platform/gis_core.h>
#include <kvdm/platform/host.h>
#include <kvdm/platform/siblings.h>

namespace kvdm {

class IKVAnalysisCollection;
class IKVCustLayerCollection;
class IKVDataCollection;
class IKVStoreLayerCollection;
class IKVStudyAreaCollection;
class IKVTablesManager;

/// The root object. No failure of an operation reaches its caller: most show a message.
///
/// Its creation reads the catalogue and the preset data and starts an empty metadata document. When
/// that fails, or the dataset manager is not there or does not start, it shows a message and has no
/// preset data.
class KVDM_EXPORT IKVDataManager : public virtual Unknown {
 public:
  /// The working directory; "" until one is set. Never fails.
  virtual std::string WorkingDirectory() = 0;

  /// Makes `path` the working directory, with a backslash at its end and doubled backslashes made
  /// single, then cleans the temporary folder. A folder that is missing is made, with "CustLayers",
  /// "StoreLayers" and the hidden "KelvaroTemp" in it but not the folders around it; the metadata
  /// document then starts afresh. Shows: a folder that could not be made whole becomes the
  /// working directory all the same, and the metadata document stays; after any other failure the
  /// old working directory stays.
  virtual void SetWorkingDirectory(std::string_view path) = 0;

  /// The dataset manager that was created at the start; Nothing when it is not there. Never fails.
  virtual std::shared_ptr<DatasetManager> GetDatasetManager() = 0;

  /// Writes the changes of the catalogue to the registry. Always False. Shows a registry that
  /// fails; one that refuses goes unseen here, and shows in Registry::Condition.
  virtual bool Flush() = 0;

  /// A path in the temporary folder whose base name, "tmp" at first, is free whatever the
  /// extension; it has none. Makes the folder, hidden, but not the file, so that the next call may
  /// answer the same. Without a working directory the folder is one of the process's current
  /// folder. Shows.
  virtual std::string TmpFilePath() = 0;

  /// Deletes what is in the temporary folder, up to the first thing that can't be deleted. Does
  /// nothing without a working directory. Quiet.
  virtual void CleanTemp() = 0;

  /// A view of the analyses; adds their element to the metadata document when it is missing. Shows
  /// when there is no metadata document.
  virtual std::shared_ptr<IKVAnalysisCollection> AnalysisCollection() = 0;

  /// A view of the data items; adds their element to the metadata document when it is missing.
  /// Shows when there is no metadata document.
  virtual std::shared_ptr<IKVDataCollection> DataCollection() = 0;

  /// A view of the study areas. Unbound when the registry's text is not well-formed. Shows.
  virtual std::shared_ptr<IKVStudyAreaCollection> StudyAreaCollection() = 0;

  /// A new tables manager. Shows.
  virtual std::shared_ptr<IKVTablesManager> TablesManager() = 0;

  /// A view of the customer layers; adds their element to the metadata document when it is missing.
  /// Shows when there is no metadata document.
  virtual std::shared_ptr<IKVCustLayerCollection> CustLayerCollection() = 0;

  /// A view of the store layers; adds their element to the metadata document when it is missing.
  /// Shows when there is no metadata document.
  virtual std::shared_ptr<IKVStoreLayerCollection> StoreLayerCollection() = 0;

  /// The names of the preset data items, Null for one without a name; an empty list when their file
  /// can't be read; Nothing when the start failed. Shows.
  virtual NameListRef PDataList() = 0;

  /// The full path of a preset data item's file; "" for a name that is not there, and when the
  /// start failed. Shows for a double quote in the name.
  virtual std::string GetPDataFile(std::string_view name) = 0;
};

/// The start by the host.
class KVDM_EXPORT IKVDMInitialize : public virtual Unknown {
 public:
  /// Keeps the host and makes its setting "VELKKVDirectory" the working directory; when that is
  /// empty, "My Output Data" on the drive of the system folder. A working directory that is another
  /// folder than the wanted one is shown and given up. With Nothing, only forgets the last host.
  /// Shows: the host is kept.
  virtual void DMInitialize(const std::shared_ptr<Host>& host) = 0;
};

/// The persistence of the GIS core library: one object's values in the host's saved document.
class KVDM_EXPORT IPersistVariant : public virtual Unknown {
 public:
  /// A new identifier whose text is "KVDM.KVDataManager". Quiet.
  virtual std::shared_ptr<Identifier> ID() = 0;

  /// Reads one value and makes it the metadata document. A text that is not well-formed leaves
  /// none: the collections then answer Nothing. Quiet: a stream that fails, or a value that is no
  /// text, leaves the document as it was.
  virtual void Load(const std::shared_ptr<VariantStream>& stream) = 0;

  /// Writes the metadata document as one text, "" when there is none, then saves the catalogue.
  /// Quiet: a stream that fails ends it, and the catalogue is not saved.
  virtual void Save(const std::shared_ptr<VariantStream>& stream) = 0;
};

/// The study area catalogue as several programs share it: `kvdm` beside an application, or two data
/// managers in one. The data manager has this interface.
///
/// A data manager reads the catalogue when it is created and never overwrites what others wrote
/// since, but goes on showing what it read. This is how it learns of their changes.
class KVDM_EXPORT IKVCatalogue : public virtual Unknown {
 public:
  /// Reads the catalogue again. What was changed here and not yet saved stands, attribute by
  /// attribute and property by property, also against changes of others, which a save then keeps in
  /// the registry's history. Views stay bound to their study areas, found by their identifiers; a
  /// view of one that others deleted is as a view of one that was deleted here. Nothing is saved.
  /// True when the catalogue was read, or nothing is stored: then all stays. Shows: all stays when
  /// it can't be read or is not well-formed.
  virtual bool Reload() = 0;

  /// Whether others have changed the stored study areas since this data manager read or saved
  /// them. Reads the registry. Quiet.
  virtual bool ChangedByOthers() = 0;

  /// From now on tells `listener`, in place of the one before, when an operation that saves, or
  /// ChangedByOthers, finds that others have changed the catalogue: once, then not until after the
  /// next Reload. With Nothing it tells nobody. Never fails.
  virtual void Notify(const std::shared_ptr<CatalogueListener>& listener) = 0;
};

}  // namespace kvdm
