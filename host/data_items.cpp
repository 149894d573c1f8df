#include "host/data_items.h"

#include <fmt/format.h>

#include "host/items.h"
#include "platform/xml/document.h"
#include "util/names.h"

namespace kvdm {
namespace {

const char* Word(DataPlace place) {
  return place == DataPlace::kCollection ? "collection" : "group";
}

std::string AttributeText(const xml::Element& element, const char* name) {
  const Value value = element.GetAttribute(name);
  return value.IsNull() ? "" : ToText(value);
}

// The collection's element in the project as it was opened; Nothing when there is none. The
// component itself has no list of the items in the collection.
std::shared_ptr<xml::Element> CollectionElement(Session& session) {
  const auto& values = session.GetProject().values;
  if (values.empty()) return nullptr;
  xml::Document document;
  XmlParser& parser = *session.Component().GetServices().platform.xml_parser;
  if (!document.LoadXml(parser, ToText(values.front()))) return nullptr;
  const auto root = document.DocumentElement();
  return root->Child(tags::kDataCollection);
}

bool HasGroup(Session& session) {
  const auto collection = CollectionElement(session);
  return collection && collection->Child(tags::kDataGroup);
}

// A name that holds a double quote can't be looked for.
std::shared_ptr<IKVDataItem> Reached(IKVDataCollection& collection, const std::string& name,
                                     const std::string& guid) {
  if (name.find('"') != name.npos) return nullptr;
  auto item = collection.GetDataItem(name);
  return item && item->GUID() == guid ? item : nullptr;
}

std::vector<DataEntry> CollectionEntries(Session& session) {
  std::vector<DataEntry> entries;
  const auto element = CollectionElement(session);
  const auto collection = DataCollection(session);
  if (!element) return entries;
  for (const auto& child : element->Children(tags::kDataItem)) {
    const std::string name = AttributeText(*child, attributes::kName);
    const std::string guid = AttributeText(*child, attributes::kGuid);
    entries.push_back({name, guid, DataPlace::kCollection, Reached(*collection, name, guid)});
  }
  return entries;
}

// The component reports a missing group; to people it is an empty one.
std::vector<DataEntry> GroupEntries(Session& session) {
  std::vector<DataEntry> entries;
  if (!HasGroup(session)) return entries;
  const auto collection = DataCollection(session);
  const auto names = collection->DataItemsList();
  const auto guids = collection->DataItemsGUIDsList();
  for (int i = 1; names && guids && i <= guids->Count(); ++i) {
    const auto text = [i](const NameListRef& list) {
      return list->Item(i).IsNull() ? "" : ToText(list->Item(i));
    };
    auto item = collection->GetDataItemByGUID(text(guids));
    if (item && item->Name() != text(names)) item = nullptr;
    entries.push_back({text(names), text(guids), DataPlace::kGroup, std::move(item)});
  }
  return entries;
}

}  // namespace

std::shared_ptr<IKVDataCollection> DataCollection(Session& session) {
  if (auto collection = session.Manager().DataCollection()) return collection;
  throw Failure(ExitCode::kRefused,
                "The data item list can't be reached. 'kvdm status' tells more.");
}

std::vector<DataEntry> DataEntries(Session& session) {
  auto entries = CollectionEntries(session);
  for (auto& entry : GroupEntries(session)) entries.push_back(std::move(entry));
  return entries;
}

std::vector<DataEntry> DataEntries(Session& session, DataPlace place) {
  return place == DataPlace::kCollection ? CollectionEntries(session) : GroupEntries(session);
}

Record Description(const DataEntry& entry) {
  return {{"name", entry.name},
          {"guid", entry.guid},
          {"place", Word(entry.place)},
          {"layer_file", entry.item ? Field(entry.item->LayerFile()) : Field()}};
}

std::vector<Record> Descriptions(const std::vector<DataEntry>& entries) {
  std::vector<Record> records;
  for (const DataEntry& entry : entries) records.push_back(Description(entry));
  return records;
}

std::optional<DataEntry> FindDataEntry(Session& session, DataPlace place,
                                       const std::string& selector) {
  auto found = DataEntries(session, place);
  std::erase_if(found, [&](const DataEntry& entry) {
    return !entry.item || (entry.guid != selector && entry.name != selector);
  });
  if (found.empty()) return std::nullopt;
  if (found.size() == 1) return found.front();
  throw Failure(
      ExitCode::kConflict,
      fmt::format("{} means {} items. Say which one by its {{GUID}}.", selector, found.size()),
      Descriptions(found));
}

DataEntry FindDataEntry(Session& session, const std::string& selector) {
  const auto first = IsGuid(selector) ? DataPlace::kGroup : DataPlace::kCollection;
  const auto second = IsGuid(selector) ? DataPlace::kCollection : DataPlace::kGroup;
  auto found = FindDataEntry(session, first, selector);
  if (!found) found = FindDataEntry(session, second, selector);
  if (found) return *found;
  throw Failure(ExitCode::kNotFound, fmt::format("There is no data item {}. 'kvdm data list --all' "
                                                 "shows what there is.",
                                                 selector));
}

}  // namespace kvdm
