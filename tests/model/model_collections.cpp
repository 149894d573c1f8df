#include <array>
#include <cstdio>

#include "tests/model/model.h"
#include "tests/model/policies.h"
#include "tests/model/texts.h"

namespace kvdm::model {
namespace {

constexpr char kNow[] = "11/15/2026 7:35:30 AM";

// Data items are looked up by their plain names, but tested for by wrapped ones.
std::string StoredKey(Kind kind, std::string_view attribute, std::string_view key) {
  return attribute == "NAME" && kind != Kind::kDataItem ? Wrapped(key) : std::string(key);
}

}  // namespace

NodeRef Model::Collection(Kind kind) {
  if (kind == Kind::kStudyArea) return catalogue_;
  if (!metadata_) {
    Show(TextsOf(kind).cannot_reach);
    throw Fault{kObjectNotSet};
  }
  const NodeRef found = metadata_->Child(TextsOf(kind).collection);
  return found ? found : metadata_->Append(TextsOf(kind).collection);
}

NodeRef Model::Group(Kind kind, const NodeRef& collection) {
  if (kind != Kind::kDataItem) return collection;
  const NodeRef group = collection->Child("SADATACOLLECTION");
  if (!group) throw Fault{};
  return group;
}

std::optional<Texts> Model::List(Kind kind, std::string_view attribute) {
  const NodeRef collection = Collection(kind);
  if (!collection) return std::nullopt;
  return Undelivered(TextsOf(kind).cannot_list, [&] {
    Texts list;
    for (const auto& child : Group(kind, collection)->children) {
      if (child->tag != TextsOf(kind).item) continue;
      const bool is_plain = kind == Kind::kDataItem;
      const auto text = is_plain ? child->Get(attribute) : Unwrapped(child->Required(attribute));
      const bool is_left_out = kind == Kind::kStudyArea && attribute == "NAME" && text == "Default";
      if (!is_left_out) list.push_back(text);
    }
    return std::optional(list);
  });
}

bool Model::Exists(Kind kind, std::string_view attribute, std::string_view key) {
  const NodeRef collection = Collection(kind);
  if (!collection) return false;
  const std::string stored = attribute == "NAME" ? Wrapped(key) : std::string(key);
  return collection->Find(TextsOf(kind).item, attribute, stored) != nullptr;
}

NodeRef Model::Get(Kind kind, std::string_view attribute, std::string_view key) {
  const NodeRef collection = Collection(kind);
  if (!collection) return nullptr;
  return Undelivered(TextsOf(kind).cannot_get, [&] {
    const NodeRef place = attribute == "GUID" ? Group(kind, collection) : collection;
    return place->Find(TextsOf(kind).item, attribute, StoredKey(kind, attribute, key));
  });
}

std::string Model::NewGuid() {
  std::array<char, 39> text{};
  std::snprintf(text.data(), text.size(), "{00000000-0000-4000-8000-%012X}", ++last_guid_);
  return text.data();
}

NodeRef Model::NewItem(Kind kind, std::string_view name) {
  NodeRef item = MakeNode(TextsOf(kind).item);
  item->Set("NAME", StoredKey(kind, "NAME", name));
  item->Set("GUID", NewGuid());
  return item;
}

bool Model::Create(Kind kind, std::string_view name) {
  switch (kind) {
    case Kind::kStudyArea:
      return CreateStudyArea(name);
    case Kind::kAnalysis:
      return CreateAnalysis(name);
    case Kind::kCustLayer:
    case Kind::kStoreLayer:
      return CreateLayer(kind, name);
    default:
      return CreateDataItem(name);
  }
}

bool Model::CreateStudyArea(std::string_view name) {
  if (!catalogue_) return false;
  const auto& texts = TextsOf(Kind::kStudyArea);
  const bool exists =
      Undelivered(texts.cannot_create, [&] { return Exists(Kind::kStudyArea, "NAME", name); });
  if (exists) return false;
  const std::string parent = directory_ + "StudyAreas";
  const std::string folder = parent + "\\" + disk_.FreeFolderName(parent, std::string(name)) + "\\";
  const NodeRef area = NewItem(Kind::kStudyArea, name);
  area->Set("DIRNAME", folder);
  area->Set("LAYERFILE", folder + "StudyArea.lyr");
  area->Set("CREATIONTIME", kNow);
  area->Append("SAPROPERTIES");
  catalogue_->children.push_back(area);
  Skipped([&] { disk_.CreateFolder(parent + "\\"); });
  const auto create = [&] {
    disk_.CreateFolder(folder);
    return true;
  };
  const bool created = Trapped(create, [] { return false; });
  Flush();
  return created;
}

bool Model::CreateAnalysis(std::string_view name) {
  const NodeRef collection = Collection(Kind::kAnalysis);
  const auto& texts = TextsOf(Kind::kAnalysis);
  std::string folder;
  const bool added = Undelivered(texts.cannot_create, [&] {
    if (collection->Find(texts.item, "NAME", Wrapped(Wrapped(name)))) return false;
    const std::string base = CurrentFolder() + "Analyses";
    folder = base + "\\" + disk_.FreeFolderName(base, std::string(name)) + "\\";
    const NodeRef analysis = NewItem(Kind::kAnalysis, name);
    analysis->Set("DIRNAME", folder);
    analysis->Set("LAYERFILE", folder + "Analysis.lyr");
    analysis->Set("CREATIONTIME", kNow);
    collection->children.push_back(analysis);
    return true;
  });
  if (!added) return false;
  const auto create = [&] {
    disk_.CreateFolderPath(folder);
    return true;
  };
  return Trapped(create, [] { return false; });
}

std::string Model::FolderOf(Kind kind) {
  static_cast<void>(Collection(kind));
  return SettledFolder(kind);
}

std::string Model::SettledFolder(Kind kind) {
  const auto settle = [&] {
    const std::string folder = directory_ + TextsOf(kind).folder;
    if (!disk_.FolderExists(folder)) disk_.CreateFolder(folder);
    return folder;
  };
  return kind == Kind::kDataItem ? Undelivered("Couldn't get Data Dir", settle) : settle();
}

bool Model::CreateLayer(Kind kind, std::string_view name) {
  const NodeRef collection = Collection(kind);
  return Undelivered(TextsOf(kind).cannot_create, [&] {
    if (Exists(kind, "NAME", name)) return false;
    const std::string folder = SettledFolder(kind);
    const NodeRef layer = NewItem(kind, name);
    layer->Set("LAYERFILE", folder + "\\" + disk_.FreeFileName(folder, std::string(name)) + ".lyr");
    layer->Set("CREATIONTIME", kNow);
    collection->children.push_back(layer);
    return true;
  });
}

bool Model::CreateDataItem(std::string_view name) {
  const NodeRef collection = Collection(Kind::kDataItem);
  const auto& texts = TextsOf(Kind::kDataItem);
  return Undelivered(texts.cannot_create, [&] {
    if (collection->Find(texts.item, "NAME", name)) return false;
    const NodeRef item = NewItem(Kind::kDataItem, name);
    item->Set("FILE", disk_.FreeFileName(SettledFolder(Kind::kDataItem), std::string(name)));
    item->Set("PATHTYPE", "RELATIVE");
    collection->children.push_back(item);
    Flush();
    return true;
  });
}

bool Model::Delete(Kind kind, std::string_view attribute, std::string_view key) {
  const NodeRef collection = Collection(kind);
  const bool by_guid = attribute == "GUID";
  if (kind == Kind::kStudyArea && !by_guid && current_ == key) current_.clear();
  if (!collection) return false;
  return Undelivered(TextsOf(kind).cannot_delete, [&] {
    const NodeRef place = Group(kind, collection);
    const NodeRef item =
        place->Find(TextsOf(kind).item, attribute, StoredKey(kind, attribute, key));
    if (!item) return false;
    place->Remove(item);
    DeleteFolders(kind, *item, by_guid);
    if (kind == Kind::kStudyArea || kind == Kind::kDataItem) Flush();
    return true;
  });
}

void Model::DeleteFolders(Kind kind, const Node& item, bool by_guid) {
  if (kind == Kind::kStoreLayer && by_guid) {
    disk_.DeleteTree(directory_ + "StoreLayers\\" + item.Get("DIRNAME").value_or(""));
  }
  if (kind != Kind::kStudyArea && kind != Kind::kAnalysis) return;
  const std::string folder = item.Required("DIRNAME");
  const bool is_below = kind == Kind::kStudyArea && by_guid;
  if (!folder.empty()) disk_.DeleteTree(is_below ? directory_ + "StudyAreas\\" + folder : folder);
}

}  // namespace kvdm::model
