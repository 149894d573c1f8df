// What differs between the study areas, customer layers and store layers of the data manager's own
// registry.
#pragma once

#include <optional>
#include <string_view>

#include "datamanager/messages.h"
#include "studyarea/kv_study_area.h"
#include "util/tags.h"

namespace kvdm {

// The texts with which one operation reports that its collection is missing, and any other error.
struct AreaReports {
  const char* collection_missing;
  const char* failed;
};

struct AreaExistenceTest {
  // From the metadata's root, up to the quoted key.
  const char* query;
  const char* failed;
};

// What differs between the three collections, side by side.
struct AreaRules {
  const char* collection;
  const char* collection_missing;
  // The tag of an item.
  const char* tag;
  // Look-ups in the collection, up to the quoted key.
  const char* by_name;
  const char* by_guid;
  AreaExistenceTest exists_by_name;
  AreaExistenceTest exists_by_guid;
  AreaReports list;
  AreaReports create;
  AreaReports remove;
  AreaReports get;
  // The name that the list of names leaves out.
  std::optional<std::string_view> unlisted = std::nullopt;
  // Of layers: the folder of their files below the working directory, the first base name there,
  // and a child that a new layer gets.
  const char* folder = nullptr;
  const char* base_name = nullptr;
  const char* child = nullptr;
};

inline constexpr AreaRules kStudyAreaRules = {
    .collection = tags::kStudyAreaCollection,
    .collection_missing = "No Study Area Collection found in XML",
    .tag = tags::kStudyArea,
    .by_name = "./STUDYAREA[@NAME=",
    .by_guid = "./STUDYAREA[@GUID=",
    .exists_by_name = {"./STUDYAREACOLLECTION/STUDYAREA[@NAME = ",
                       messages::areas::kNoDocumentElement},
    .exists_by_guid = {"./STUDYAREACOLLECTION/STUDYAREA[@GUID = ",
                       messages::areas::kNoDocumentElement},
    .list = {messages::areas::kNoStudyAreasToList, messages::areas::kListStudyAreas},
    .create = {messages::areas::kNoStudyAreas, messages::areas::kCreateStudyArea},
    .remove = {messages::areas::kNoStudyAreas, messages::areas::kDeleteStudyArea},
    .get = {messages::areas::kGetStudyArea, messages::areas::kGetStudyArea},
    .unlisted = kUnlistedStudyArea,
};

inline constexpr AreaRules kCustLayerRules = {
    .collection = tags::kCustomerCollection,
    .collection_missing = "No Customer Collection found in XML",
    .tag = tags::kCustLayer,
    .by_name = "./CUSTLAYER[@NAME=",
    .by_guid = "./CUSTLAYER[@GUID=",
    .exists_by_name = {"./CUSTOMERCOLLECTION/CUSTLAYER[@NAME = ",
                       messages::areas::kCustLayerExists},
    .exists_by_guid = {"./CUSTOMERCOLLECTION/CUSTLAYER[@GUID = ",
                       messages::areas::kCustLayerExistsByGuid},
    .list = {messages::areas::kListCustLayers, messages::areas::kListCustLayers},
    .create = {messages::areas::kRegisterCustLayer, messages::areas::kRegisterCustLayer},
    .remove = {messages::areas::kUnregisterCustLayer, messages::areas::kUnregisterCustLayer},
    .get = {messages::areas::kGetCustLayer, messages::areas::kGetCustLayer},
    .folder = "Customers\\",
    .base_name = "Cust",
    .child = tags::kLinkField,
};

inline constexpr AreaRules kStoreLayerRules = {
    .collection = tags::kStoreCollection,
    .collection_missing = "No Store Collection found in XML",
    .tag = tags::kStoreLayer,
    .by_name = "./STORELAYER[@NAME=",
    .by_guid = "./STORELAYER[@GUID=",
    .exists_by_name = {"./STORECOLLECTION/STORELAYER[@NAME = ", messages::areas::kStoreLayerExists},
    .exists_by_guid = {"./STORECOLLECTION/STORELAYER[@GUID = ",
                       messages::areas::kStoreLayerExistsByGuid},
    .list = {messages::areas::kListStoreLayers, messages::areas::kListStoreLayers},
    .create = {messages::areas::kRegisterStoreLayer, messages::areas::kRegisterStoreLayer},
    .remove = {messages::areas::kUnregisterStoreLayer, messages::areas::kUnregisterStoreLayer},
    .get = {messages::areas::kGetStoreLayer, messages::areas::kGetStoreLayer},
    .folder = "Stores\\",
    .base_name = "Store",
};

}  // namespace kvdm
