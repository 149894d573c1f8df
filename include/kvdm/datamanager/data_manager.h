// The root object of the component, its start and its persistence.
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

// The root object. No error ever reaches its caller; each failure shows a message.
class KVDM_EXPORT IKVDataManager : public virtual Unknown {
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

class KVDM_EXPORT IKVDMInitialize : public virtual Unknown {
 public:
  // Settles the working directory from the host's setting "VELKKVDirectory"; without a host only
  // forgets the last one.
  virtual void DMInitialize(const std::shared_ptr<Host>& host) = 0;
};

// The persistence of the GIS core library: one object's values in the host's saved document.
class KVDM_EXPORT IPersistVariant : public virtual Unknown {
 public:
  // An identifier that holds the class identity.
  virtual std::shared_ptr<Identifier> ID() = 0;
  // Reads one value and makes it the metadata document; a text that is not well-formed leaves none.
  // [quiet]
  virtual void Load(const std::shared_ptr<VariantStream>& stream) = 0;
  // Writes the metadata document as one value, then flushes. [quiet]
  virtual void Save(const std::shared_ptr<VariantStream>& stream) = 0;
};

}  // namespace kvdm
