// The classes that follow one design, each under the same names, with their differences as data.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "tests/conformance/results.h"
#include "tests/conformance/world.h"

namespace kvdm::conformance {

struct AnalysisFamily {
  using Item = IKVAnalysis;
  using Collection = IKVAnalysisCollection;
  static constexpr char kClass[] = "KVAnalysis";
  static constexpr char kCollectionClass[] = "KVAnalysisCollection";
  static constexpr char kTag[] = "ANALYSIS";
  static constexpr char kCollectionTag[] = "ANALYSISCOLLECTION";
  static constexpr char kListFailed[] = "Couldn't get Analyses list for the study area";
  static constexpr char kCreateFailed[] = "Kelvaro Data Manager: Couldn't create Analysis";
  static constexpr char kDeleteFailed[] = "Couldn't delete Analysis";
  static constexpr char kGetFailed[] = "Kelvaro Data Manager: Couldn't get Analysis Object";
  static constexpr char kSetParameterFailed[] = "Error while setting parameter of analysis";
  static constexpr char kSetLayerFileFailed[] =
      "Kelvaro Data Manager: Couldn't change the Analysis Layer layer file";
  static constexpr char kSetGuidFailed[] =
      "Kelvaro Data Manager: Couldn't change the Analysis Layer GUID";
  static constexpr bool kShowsReports = false;

  static auto Of(World& world) { return world.Manager()->AnalysisCollection(); }
  static auto List(Collection& all) { return all.AnalysesList(); }
  static auto Guids(Collection& all) { return all.AnalysesGUIDsList(); }
  static bool Create(Collection& all, std::string_view name) { return all.CreateAnalysis(name); }
  static bool Delete(Collection& all, std::string_view name) { return all.DeleteAnalysis(name); }
  static bool DeleteByGuid(Collection& all, std::string_view guid) {
    return all.DeleteAnalysisByGUID(guid);
  }
  static auto Get(Collection& all, std::string_view name) { return all.GetAnalysis(name); }
  static auto GetByGuid(Collection& all, std::string_view guid) {
    return all.GetAnalysisByGUID(guid);
  }
  static bool Exists(Collection& all, std::string_view name) { return all.AnalysisExists(name); }
  static bool ExistsByGuid(Collection& all, std::string_view guid) {
    return all.AnalysisExistsByGUID(guid);
  }
  static auto GuidOf(Item& item) { return item.AnalysisGUID(); }
};

struct StoreLayerFamily {
  using Item = IKVStoreLayer;
  using Collection = IKVStoreLayerCollection;
  static constexpr char kClass[] = "KVStoreLayer";
  static constexpr char kCollectionClass[] = "KVStoreLayerCollection";
  static constexpr char kTag[] = "STORELAYER";
  static constexpr char kCollectionTag[] = "STORELAYERCOLLECTION";
  static constexpr char kFolder[] = "StoreLayers";
  static constexpr char kListFailed[] = "Couldn't get StoreLayers list for the study area";
  static constexpr char kCreateFailed[] = "Kelvaro Data Manager: Couldn't create StoreLayer";
  static constexpr char kDeleteFailed[] = "Couldn't delete StoreLayer";
  static constexpr char kGetFailed[] = "Kelvaro Data Manager: Couldn't get StoreLayer Object";
  static constexpr char kSetParameterFailed[] = "Error while setting parameter of analysis";
  static constexpr char kSetLayerFileFailed[] =
      "Kelvaro Data Manager: Couldn't change the Customer Layer layer file";
  static constexpr char kSetGuidFailed[] =
      "Kelvaro Data Manager: Couldn't change the Customer Layer GUID";
  static constexpr bool kShowsReports = true;
  static constexpr char kPathType[] = " PATHTYPE=\"ABSOLUTE\"";

  static auto Of(World& world) { return world.Manager()->StoreLayerCollection(); }
  static auto List(Collection& all) { return all.StoreLayersList(); }
  static auto Guids(Collection& all) { return all.StoreLayersGUIDsList(); }
  static bool Create(Collection& all, std::string_view name) { return all.CreateStoreLayer(name); }
  static bool Delete(Collection& all, std::string_view name) { return all.DeleteStoreLayer(name); }
  static bool DeleteByGuid(Collection& all, std::string_view guid) {
    return all.DeleteStoreLayerByGUID(guid);
  }
  static auto Get(Collection& all, std::string_view name) { return all.GetStoreLayer(name); }
  static auto GetByGuid(Collection& all, std::string_view guid) {
    return all.GetStoreLayerByGUID(guid);
  }
  static bool Exists(Collection& all, std::string_view name) { return all.StoreLayerExists(name); }
  static bool ExistsByGuid(Collection& all, std::string_view guid) {
    return all.StoreLayerExistsByGUID(guid);
  }
  static auto Folder(Collection& all) { return all.StoreLayersDir(); }
  static auto GuidOf(Item& item) { return item.GUID(); }
};

struct CustLayerFamily {
  using Item = IKVCustLayer;
  using Collection = IKVCustLayerCollection;
  static constexpr char kClass[] = "KVCustLayer";
  static constexpr char kCollectionClass[] = "KVCustLayerCollection";
  static constexpr char kTag[] = "CUSTLAYER";
  static constexpr char kCollectionTag[] = "CUSTLAYERCOLLECTION";
  static constexpr char kFolder[] = "CustLayers";
  static constexpr char kListFailed[] = "Couldn't get CustLayers list for the study area";
  static constexpr char kCreateFailed[] = "Kelvaro Data Manager: Couldn't create CustLayer";
  static constexpr char kDeleteFailed[] = "Couldn't delete CustLayer";
  static constexpr char kGetFailed[] = "Kelvaro Data Manager: Couldn't get CustLayer Object";
  static constexpr char kSetParameterFailed[] = "Error while setting parameter of analysis";
  static constexpr char kSetLayerFileFailed[] =
      "Kelvaro Data Manager: Couldn't change the Customer Layer layer file";
  static constexpr char kSetGuidFailed[] =
      "Kelvaro Data Manager: Couldn't change the Customer Layer GUID";
  static constexpr bool kShowsReports = false;
  static constexpr char kPathType[] = "";

  static auto Of(World& world) { return world.Manager()->CustLayerCollection(); }
  static auto List(Collection& all) { return all.CustLayersList(); }
  static auto Guids(Collection& all) { return all.CustLayersGUIDsList(); }
  static bool Create(Collection& all, std::string_view name) { return all.CreateCustLayer(name); }
  static bool Delete(Collection& all, std::string_view name) { return all.DeleteCustLayer(name); }
  static bool DeleteByGuid(Collection& all, std::string_view guid) {
    return all.DeleteCustLayerByGUID(guid);
  }
  static auto Get(Collection& all, std::string_view name) { return all.GetCustLayer(name); }
  static auto GetByGuid(Collection& all, std::string_view guid) {
    return all.GetCustLayerByGUID(guid);
  }
  static bool Exists(Collection& all, std::string_view name) { return all.CustLayerExists(name); }
  static bool ExistsByGuid(Collection& all, std::string_view guid) {
    return all.CustLayerExistsByGUID(guid);
  }
  static auto Folder(Collection& all) { return all.CustLayersDir(); }
  static auto GuidOf(Item& item) { return item.GUID(); }
};

// Data items, as far as they are like the others.
struct DataItemFamily {
  using Item = IKVDataItem;
  static constexpr char kClass[] = "KVDataItem";
  static constexpr char kTag[] = "DATAITEM";
  static constexpr char kCollectionTag[] = "DATACOLLECTION";
  static constexpr char kSetParameterFailed[] = "Error while setting parameter of Dataitem";
  static constexpr bool kShowsReports = false;

  static auto Of(World& world) { return world.Manager()->DataCollection(); }
  static auto Get(IKVDataCollection& all, std::string_view name) {
    // Data items have their names unwrapped.
    return all.GetDataItem("_" + std::string(name) + "_");
  }
  static auto GuidOf(Item& item) { return item.GUID(); }
};

// An open world whose collection of the family holds `items`.
template <class Family>
struct FamilyWorld : OpenWorld {
  explicit FamilyWorld(const std::string& items, std::string_view study_areas = {})
      : OpenWorld(study_areas) {
    Load(Inside(items));
  }

  // The metadata when `items` are in the collection.
  static std::string Inside(const std::string& items) {
    const std::string tag = Family::kCollectionTag;
    return items.empty() ? "<" + tag + "/>" : "<" + tag + ">" + items + "</" + tag + ">";
  }
};

// An open world with one item, called A, of these further attributes and this content.
template <class Family>
struct ItemWorld : FamilyWorld<Family> {
  explicit ItemWorld(const std::string& attributes, const std::string& content = {})
      : FamilyWorld<Family>(Element(attributes, content)),
        item(Family::Get(*Family::Of(*this), "A")) {}

  // The item's element.
  static std::string Element(const std::string& attributes, const std::string& content = {}) {
    const std::string tag = Family::kTag;
    const std::string start = "<" + tag + " NAME=\"_A_\"" + attributes;
    return content.empty() ? start + "/>" : start + ">" + content + "</" + tag + ">";
  }
  // The metadata when the item has these attributes and this content.
  static std::string With(const std::string& attributes, const std::string& content = {}) {
    return FamilyWorld<Family>::Inside(Element(attributes, content));
  }

  std::shared_ptr<typename Family::Item> item;
};

// Expects that `act` reports `message`: shown where the family's class shows it, else the call
// fails.
template <class Family, class Act>
void ExpectReport(World& world, const char* message, Act act) {
  const Outcome outcome = OutcomeOf(act);
  if (Family::kShowsReports) {
    EXPECT_EQ(outcome, Succeeds());
    EXPECT_EQ(world.Messages(), (std::vector<Message>{{message, "Kelvaro", 48}}));
  } else {
    EXPECT_EQ(outcome, FailsToReport(message));
    EXPECT_EQ(world.Messages(), std::vector<Message>{});
  }
}

using ItemFamilies = testing::Types<AnalysisFamily, StoreLayerFamily, CustLayerFamily>;
using LayerFamilies = testing::Types<StoreLayerFamily, CustLayerFamily>;

}  // namespace kvdm::conformance
