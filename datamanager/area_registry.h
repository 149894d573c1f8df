// The data manager's own registry: study areas, customer layers and store layers that stand
// directly in the metadata document, and the names under which the two kinds of layers are shown.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <kvdm/datamanager/layers.h>
#include <kvdm/datamanager/study_areas.h>

#include "items/friends.h"

namespace kvdm {

class CollectionView;
struct AreaReports;
struct AreaRules;
struct Workspace;

// Works on the children STUDYAREACOLLECTION, CUSTOMERCOLLECTION and STORECOLLECTION of the
// metadata's root and creates none of them: a fresh metadata document has none, a loaded one may.
// The accessors of the data manager hand out other collections.
//
// Every operation traps its errors, shows a message and returns its neutral result: False, "",
// Nothing or, for a list, an empty list. A missing collection is such an error, except to the
// existence tests.
class AreaRegistry {
 public:
  // A part of the data manager `manager`, whose workspace it shares: it lives and dies with it.
  AreaRegistry(const Platform& platform, Workspace& workspace, DataManagerFriend& manager)
      : platform_(platform), workspace_(workspace), manager_(manager) {}

  // Leaves out the study area "Default".
  NameListRef StudyAreaNames();
  NameListRef StudyAreaGUIDs();
  // Creates the study area with its folders, which stay when the collection is missing. False for a
  // name that exists. Saves.
  bool CreateStudyArea(std::string_view name);
  // Removes the study area, and as much of its folder as can be. False when there is none. Saves.
  bool DeleteStudyArea(std::string_view name);
  bool DeleteStudyAreaByGUID(std::string_view guid);
  std::shared_ptr<IKVStudyArea> GetStudyArea(std::string_view name);
  std::shared_ptr<IKVStudyArea> GetStudyAreaByGUID(std::string_view guid);
  // The existence tests make the metadata invalid when the document has no root.
  bool StudyAreaExists(std::string_view name);
  bool StudyAreaExistsByGUID(std::string_view guid);

  // The folder of the layers' files with a trailing "\"; "" while there is no valid metadata.
  // Nothing creates it.
  [[nodiscard]] std::string CustomersDir() const;
  [[nodiscard]] std::string StoresDir() const;

  NameListRef CustLayerNames();
  NameListRef CustLayerGUIDs();
  // False for a name that exists and while there is no valid metadata. Reserves a file name and
  // writes no file. Saves.
  bool RegisterCustLayer(std::string_view name);
  // Leaves the layer's files. True also when there is no such layer. Saves.
  bool UnregisterCustLayer(std::string_view name);
  bool UnregisterCustLayerByGUID(std::string_view guid);
  std::shared_ptr<IKVCustLayer> GetCustLayer(std::string_view name);
  std::shared_ptr<IKVCustLayer> GetCustLayerByGUID(std::string_view guid);
  bool CustLayerExists(std::string_view name);
  bool CustLayerExistsByGUID(std::string_view guid);

  // The same for store layers.
  NameListRef StoreLayerNames();
  NameListRef StoreLayerGUIDs();
  bool RegisterStoreLayer(std::string_view name);
  bool UnregisterStoreLayer(std::string_view name);
  bool UnregisterStoreLayerByGUID(std::string_view guid);
  std::shared_ptr<IKVStoreLayer> GetStoreLayer(std::string_view name);
  std::shared_ptr<IKVStoreLayer> GetStoreLayerByGUID(std::string_view guid);
  bool StoreLayerExists(std::string_view name);
  bool StoreLayerExistsByGUID(std::string_view guid);

  // What a layer of each kind is called: "Customer" and "Store" unless the system registry says
  // otherwise, also quietly when it can't be read. A refused write is not detected.
  std::string CustomerAlias();
  void SetCustomerAlias(std::string_view alias);
  std::string StoreAlias();
  void SetStoreAlias(std::string_view alias);

 private:
  template <class Body>
  auto Reported(const AreaReports& reports, Body&& body);
  // Run-time error 333 when its element is missing.
  [[nodiscard]] CollectionView Collection(const AreaRules& rules) const;
  [[nodiscard]] std::string LayersDir(const AreaRules& rules) const;
  template <class Add>
  NameListRef List(const AreaRules& rules, Add&& add);
  NameListRef Names(const AreaRules& rules);
  NameListRef GUIDs(const AreaRules& rules);
  bool Exists(const AreaRules& rules, const char* attribute, std::string_view key,
              const char* failed);
  bool ExistsByName(const AreaRules& rules, std::string_view name);
  bool ExistsByGUID(const AreaRules& rules, std::string_view guid);
  std::string CreateStudyAreaFolders();
  bool DeleteStudyArea(const char* attribute, std::string_view key);
  bool RegisterLayer(const AreaRules& rules, std::string_view name);
  bool UnregisterLayer(const AreaRules& rules, const char* attribute, std::string_view key);
  template <class Item>
  std::shared_ptr<Item> Get(const AreaRules& rules, const char* attribute, std::string_view key);
  std::string Alias(const char* value_name, const char* otherwise);
  void SetAlias(const char* value_name, std::string_view alias);

  const Platform& platform_;
  Workspace& workspace_;
  DataManagerFriend& manager_;
};

}  // namespace kvdm
