// The two kinds of layers as the commands search them: what differs between them, side by side.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/items.h"
#include "host/session.h"

namespace kvdm {

struct StoreLayerKind {
  using Item = IKVStoreLayer;
  using Collection = IKVStoreLayerCollection;
  static constexpr char kWord[] = "store layer";
  static constexpr char kCommand[] = "store";
  static constexpr auto kCollection = &IKVDataManager::StoreLayerCollection;
  static constexpr auto kNames = &Collection::StoreLayersList;
  static constexpr auto kGuids = &Collection::StoreLayersGUIDsList;
  static constexpr auto kGet = &Collection::GetStoreLayer;
  static constexpr auto kGetByGuid = &Collection::GetStoreLayerByGUID;
  static constexpr auto kCreate = &Collection::CreateStoreLayer;
  static constexpr auto kDelete = &Collection::DeleteStoreLayer;
  static constexpr auto kDeleteByGuid = &Collection::DeleteStoreLayerByGUID;
  static constexpr auto kFolder = &Collection::StoreLayersDir;
  // Deleting one by its identifier takes the files of all.
  static constexpr bool kGuidTakesFolder = true;
};

struct CustLayerKind {
  using Item = IKVCustLayer;
  using Collection = IKVCustLayerCollection;
  static constexpr char kWord[] = "customer layer";
  static constexpr char kCommand[] = "customer";
  static constexpr auto kCollection = &IKVDataManager::CustLayerCollection;
  static constexpr auto kNames = &Collection::CustLayersList;
  static constexpr auto kGuids = &Collection::CustLayersGUIDsList;
  static constexpr auto kGet = &Collection::GetCustLayer;
  static constexpr auto kGetByGuid = &Collection::GetCustLayerByGUID;
  static constexpr auto kCreate = &Collection::CreateCustLayer;
  static constexpr auto kDelete = &Collection::DeleteCustLayer;
  static constexpr auto kDeleteByGuid = &Collection::DeleteCustLayerByGUID;
  static constexpr auto kFolder = &Collection::CustLayersDir;
  static constexpr bool kGuidTakesFolder = false;
};

// Failure kRefused when the component has no such collection.
template <class Kind>
[[nodiscard]] std::shared_ptr<typename Kind::Collection> LayerCollection(Session& session) {
  if (auto collection = std::invoke(Kind::kCollection, session.Manager())) return collection;
  throw Failure(
      ExitCode::kRefused,
      fmt::format("The {} list can't be reached. 'kvdm status' tells more.", Kind::kWord));
}

template <class Kind>
[[nodiscard]] ItemSource<typename Kind::Item> Layers(Session& session) {
  using Item = typename Kind::Item;
  const auto collection = LayerCollection<Kind>(session);
  return {
      .kind = Kind::kWord,
      .command = fmt::format("kvdm {} list", Kind::kCommand),
      .names = std::invoke(Kind::kNames, *collection),
      .guids = std::invoke(Kind::kGuids, *collection),
      .by_name = [collection](const std::string& name) { return (*collection.*Kind::kGet)(name); },
      .by_guid =
          [collection](const std::string& guid) { return (*collection.*Kind::kGetByGuid)(guid); },
      .guid_of = [](Item& layer) { return layer.GUID(); },
      .describe = [](Item& layer) -> Record {
        return {{"name", layer.Name()},
                {"guid", layer.GUID()},
                {"created", layer.CreationTime()},
                {"layer_file", layer.LayerFile()}};
      },
  };
}

}  // namespace kvdm
