// Any text as the metadata document: what was loaded is saved, loaded and saved again with
// identical bytes, and everything that it lists can be used.
#include "fuzz/fuzzer.h"
#include "fuzz/world.h"

namespace kvdm::fuzz {
namespace {

template <class Item>
void UseItem(const std::shared_ptr<Item>& item) {
  if (!item) return;
  MayFail([&] { static_cast<void>(item->Name()); });
  MayFail([&] { static_cast<void>(item->LayerFile()); });
  MayFail([&] { item->SetParameter("a", "1"); });
  MayFail([&] { Require(item->GetParameter("a") == "1"); });
  MayFail([&] { static_cast<void>(item->ParametersList()); });
}

void UseAnalyses(World& world) {
  const auto analyses = world.manager->AnalysisCollection();
  if (!analyses) return;
  for (const auto& name : Listed([&] { return analyses->AnalysesList(); })) {
    MayFail([&] { UseItem(analyses->GetAnalysis(name)); });
    MayFail([&] { analyses->DeleteAnalysis(name); });
  }
  MayFail([&] { analyses->CreateAnalysis("New"); });
}

void UseLayers(World& world) {
  const auto stores = world.manager->StoreLayerCollection();
  const auto customers = world.manager->CustLayerCollection();
  if (!stores || !customers) return;
  for (const auto& name : Listed([&] { return stores->StoreLayersList(); })) {
    MayFail([&] { UseItem(stores->GetStoreLayer(name)); });
    MayFail([&] { stores->DeleteStoreLayer(name); });
  }
  for (const auto& guid : Listed([&] { return customers->CustLayersGUIDsList(); })) {
    MayFail([&] { UseItem(customers->GetCustLayerByGUID(guid)); });
    MayFail([&] { customers->DeleteCustLayerByGUID(guid); });
  }
  MayFail([&] { customers->CreateCustLayer("New"); });
}

void UseData(World& world) {
  const auto data = world.manager->DataCollection();
  if (!data) return;
  for (const auto& guid : Listed([&] { return data->DataItemsGUIDsList(); })) {
    MayFail([&] { UseItem(data->GetDataItemByGUID(guid)); });
    MayFail([&] { data->DeleteDataItemByGUID(guid); });
  }
  MayFail([&] { data->CreateDataItem("New"); });
}

}  // namespace

void Check(std::string_view bytes) {
  World world;
  world.Start();
  world.Load(bytes);
  const std::string saved = world.Saved();
  world.Load(saved);
  Require(world.Saved() == saved);
  UseAnalyses(world);
  UseLayers(world);
  UseData(world);
  const std::string changed = world.Saved();
  world.Load(changed);
  Require(world.Saved() == changed);
}

}  // namespace kvdm::fuzz
