// Friend interface: what the component's own objects may ask of the data manager, and its clients
// may not.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <kvdm/datamanager/data_manager.h>
#include <kvdm/platform/platform.h>

#include "platform/xml/node.h"
#include "util/reporter.h"

namespace kvdm {

// A view of an element of the catalogue, as the data manager sees it when it has read the catalogue
// again. Not one of the interfaces that an object can be asked for.
class CatalogueView {
 public:
  [[nodiscard]] virtual const xml::Element& CatalogueElement() const = 0;
  virtual void Rebind(xml::Element element) noexcept = 0;

 protected:
  ~CatalogueView() = default;
};

// Not one of the interfaces that an object can be asked for.
class DataManagerFriend : public ReportTarget {
 public:
  // As in IKVDataManager.
  virtual std::string WorkingDirectory() = 0;
  virtual bool Flush() = 0;
  virtual std::shared_ptr<IKVAnalysisCollection> AnalysisCollection() = 0;
  virtual std::shared_ptr<IKVStudyAreaCollection> StudyAreaCollection() = 0;
  virtual std::shared_ptr<IKVCustLayerCollection> CustLayerCollection() = 0;
  virtual std::shared_ptr<IKVStoreLayerCollection> StoreLayerCollection() = 0;

  // The host given to DMInitialize; Nothing when none was.
  virtual std::shared_ptr<Host> HostObject() = 0;

  // The finder of localised texts; Nothing before DMInitialize.
  virtual std::shared_ptr<ResourceFinder> Resources() = 0;

  [[nodiscard]] virtual const Platform& Services() const = 0;

  // The first free folder name below `parent` in the working directory: `prefix`, then `prefix`
  // followed by 1, 2, 3 ... "" while there is no valid metadata.
  virtual std::string GenerateFolderName(std::string_view parent, std::string_view prefix) = 0;

  // Keeps `view` bound to its element for as long as it lives.
  virtual void Follow(const std::shared_ptr<CatalogueView>& view) = 0;

  // A reference to hand on to views.
  virtual std::shared_ptr<DataManagerFriend> Reference() = 0;

 protected:
  ~DataManagerFriend() = default;
};

using DataManagerRef = std::shared_ptr<DataManagerFriend>;

}  // namespace kvdm
