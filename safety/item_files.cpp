#include "safety/item_files.h"

#include <fmt/format.h>

#include <map>
#include <utility>

#include <kvdm/platform/error.h>

#include "safety/items.h"
#include "safety/json.h"
#include "safety/path_prefix.h"

namespace kvdm {
namespace {

constexpr char kItemsFormat[] = "kvdm items";
constexpr int kItemsVersion = 1;

std::vector<KeptItem> ItemsOf(const Platform& platform, std::string_view text) {
  std::vector<KeptItem> items;
  const auto tree = ReadDocumentTree(*platform.xml_parser, text);
  if (!tree || tree->Root() == nullptr) return items;
  for (const StoredItem& item : ItemsIn(*tree->Root())) {
    items.push_back({item.collection, *item.element});
  }
  return items;
}

// Study areas and analyses; the others have no folder of their own.
bool HasFolder(const KeptItem& item) { return !item.element.Attribute("DIRNAME").empty(); }

std::vector<KeptItem> WithFolder(std::vector<KeptItem> items, bool has_folder) {
  std::erase_if(items, [&](const KeptItem& item) { return HasFolder(item) != has_folder; });
  return items;
}

std::map<std::string, const KeptItem*> ByGuid(const std::vector<KeptItem>& items) {
  std::map<std::string, const KeptItem*> by_guid;
  for (const KeptItem& item : items) by_guid.emplace(item.element.Attribute("GUID"), &item);
  return by_guid;
}

KeptItem ParseItem(const Platform& platform, const Json& json) {
  auto tree = ReadDocumentTree(*platform.xml_parser, json.at("element").get<std::string>());
  if (!tree || tree->Root() == nullptr) Unreadable("It holds an element that is damaged.");
  return {json.at("collection").get<std::string>(), *tree->Root()};
}

}  // namespace

std::string ItemFileText(const Platform& platform, const ItemFile& file) {
  Json items = Json::array();
  for (const KeptItem& item : file.items) {
    items.push_back({{"collection", item.collection},
                     {"element", ElementText(*platform.xml_parser, item.element)}});
  }
  const Json document = {{"format", kItemsFormat},
                         {"version", kItemsVersion},
                         {"working_directory", file.working_directory},
                         {"items", std::move(items)}};
  return document.dump(2) + "\n";
}

std::optional<ItemFile> ParseItemFile(const Platform& platform, std::string_view text) {
  try {
    const Json document = ParseJson(text);
    if (document.at("format") != kItemsFormat || document.at("version") != kItemsVersion) return {};
    ItemFile file{document.at("working_directory").get<std::string>(), {}};
    for (const Json& item : document.at("items")) file.items.push_back(ParseItem(platform, item));
    return file;
  } catch (const Failure& failure) {
    platform.log->Note(fmt::format("a recovery side-car is damaged: {}", failure.what()));
  } catch (const Json::exception& error) {
    platform.log->Note(fmt::format("a recovery side-car is damaged: {}", error.what()));
  }
  return std::nullopt;
}

ItemFiles::ItemFiles(const Platform& platform, std::string_view working_directory,
                     std::string_view owner)
    : platform_(platform), folder_(working_directory), owner_(owner) {
  if (!folder_.ends_with('\\')) folder_ += '\\';
}

// "" for an item whose folder is elsewhere or not there.
std::string ItemFiles::PlaceOf(const DocumentNode& element) const {
  std::string folder = element.Attribute("DIRNAME");
  if (!PathPrefix(folder_, "").Replaced(folder) || !platform_.files->FolderExists(folder))
    return "";
  if (!folder.ends_with('\\')) folder += '\\';
  return folder + kRecoveryFile;
}

void ItemFiles::Write(const std::string& path, std::vector<KeptItem> items) const {
  try {
    const std::string text = ItemFileText(platform_, {folder_, std::move(items)});
    if (platform_.files->ReadFile(path) != text) platform_.files->WriteFile(path, text);
  } catch (const RuntimeError& error) {
    platform_.log->Note(fmt::format("{} could not be written: {}", path, error.what()));
  }
}

std::string ItemFiles::LayersPlace() const {
  return fmt::format("{}{}\\{}{}.json", folder_, kHostFolder, kItemsPrefix, owner_);
}

void ItemFiles::WriteLayers(std::vector<KeptItem> items) const {
  const std::string folder = folder_ + kHostFolder;
  try {
    if (!platform_.files->FolderExists(folder)) {
      platform_.files->CreateFolder(folder);
      platform_.files->HideFolder(folder);
    }
  } catch (const RuntimeError& error) {
    platform_.log->Note(fmt::format("{} could not be made and hidden: {}", folder, error.what()));
  }
  Write(LayersPlace(), std::move(items));
}

void ItemFiles::Follow(std::string_view before, std::string_view metadata,
                       std::string_view catalogue) const {
  if (!platform_.files->FolderExists(folder_)) return;
  const bool is_first = !platform_.files->ReadFile(LayersPlace());
  const auto old = ItemsOf(platform_, is_first ? "" : before);
  auto wanted = WithFolder(ItemsOf(platform_, catalogue), true);
  if (is_first || before != metadata) {
    const auto now = ItemsOf(platform_, metadata);
    const auto by_guid = ByGuid(old);
    for (const KeptItem& item : WithFolder(now, true)) {
      const auto found = by_guid.find(item.element.Attribute("GUID"));
      if (found == by_guid.end() || *found->second != item) wanted.push_back(item);
    }
    auto layers = WithFolder(now, false);
    if (is_first || layers != WithFolder(old, false)) WriteLayers(std::move(layers));
  }
  for (const KeptItem& item : wanted) {
    const std::string place = PlaceOf(item.element);
    if (!place.empty()) Write(place, {item});
  }
}

}  // namespace kvdm
