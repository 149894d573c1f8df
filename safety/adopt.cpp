#include "safety/adopt.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>

#include <kvdm/platform/error.h>

#include "safety/items.h"

namespace kvdm {
namespace {

constexpr char kAreas[] = "STUDYAREACOLLECTION";
constexpr char kDataGroup[] = "SADATACOLLECTION";

DocumentTree TreeOf(const Platform& platform, const std::string& text, const char* root) {
  auto tree = ReadDocumentTree(*platform.xml_parser, text);
  if (tree && tree->Root() != nullptr) return std::move(*tree);
  if (!text.empty()) {
    throw Failure(ExitCode::kUnreadable,
                  "A document can't be read, so nothing was adopted. 'kvdm status' tells more.");
  }
  return {false, {{DocumentNode::Kind::kElement, root}}};
}

// The child of `parent` with that tag, made when it is missing.
DocumentNode& ChildOf(DocumentNode& parent, const std::string& tag) {
  const auto found = std::ranges::find(parent.children, tag, &DocumentNode::name);
  if (found != parent.children.end()) return *found;
  parent.children.push_back({DocumentNode::Kind::kElement, tag});
  return parent.children.back();
}

// Where an item stands: two have the same text when they have one place.
std::string PlaceOf(const Platform& platform, const DocumentNode& element) {
  const std::string folder = element.Attribute("DIRNAME");
  if (folder.empty()) return "";
  return platform.files->FolderExists(folder) ? platform.files->FullPath(folder) : folder;
}

std::string TextIn(const PropertySetMap::Properties& properties, const char* name) {
  const auto found = properties.find(name);
  return found != properties.end() && found->second.IsText() ? ToText(found->second) : "";
}

// Takes found items into the documents, one after the other.
class Adopter {
 public:
  Adopter(const Platform& platform, const Holdings& holdings)
      : platform_(platform),
        holdings_(holdings),
        metadata_(TreeOf(platform, holdings.metadata, "KVDATACOLLECTION")),
        catalogue_(TreeOf(platform, holdings.catalogue, kAreas)) {
    for (const DocumentTree* tree : {&metadata_, &catalogue_}) {
      for (const StoredItem& item : ItemsIn(*tree->Root())) Remember(*item.element);
    }
  }

  Found Take(FoundItem candidate) {
    Found found{std::move(candidate.item), std::move(candidate.source), "new"};
    DocumentNode& element = found.item.element;
    const std::string place = PlaceOf(platform_, element);
    const auto known = by_guid_.find(element.Attribute("GUID"));
    const bool is_known = known != by_guid_.end();
    if (places_.contains(place) || (is_known && known->second == place)) {
      found.state = "present";
    } else if (is_known && !IsThere(known->second)) {
      found.state = "moved";
    }
    if (found.state != "new") return found;
    if (is_known) found.state = "copy";
    if (is_known || element.Attribute("GUID").empty()) SetNewGuid(element);
    if (element.name != "ANALYSIS" && TakeFreeName(element)) found.state = "copy";
    Insert(found.item);
    Remember(element);
    return found;
  }

  // The documents with what was taken; those that nothing was taken into are as before.
  [[nodiscard]] Holdings Result() const {
    Holdings result = holdings_;
    if (metadata_grew_) result.metadata = DocumentTreeText(*platform_.xml_parser, metadata_);
    if (catalogue_grew_) result.catalogue = DocumentTreeText(*platform_.xml_parser, catalogue_);
    return result;
  }

 private:
  [[nodiscard]] bool IsThere(const std::string& place) const {
    return !place.empty() && platform_.files->FolderExists(place);
  }

  void Remember(const DocumentNode& element) {
    const std::string place = PlaceOf(platform_, element);
    by_guid_.emplace(element.Attribute("GUID"), place);
    if (!place.empty()) places_.insert(place);
    names_.insert(element.name + '\n' + ItemName(element));
  }

  void SetNewGuid(DocumentNode& element) const {
    const auto identifier = platform_.gis_core->CreateIdentifier();
    identifier->Generate();
    element.SetAttribute("GUID", identifier->GetValue());
  }

  // Whether another name had to be given: that with the first number that is free.
  [[nodiscard]] bool TakeFreeName(DocumentNode& element) {
    const std::string wanted = ItemName(element);
    std::string name = wanted;
    for (int i = 1; names_.contains(element.name + '\n' + name); ++i) {
      name = fmt::format("{}{}", wanted, i);
    }
    if (name == wanted) return false;
    element.SetAttribute("NAME", element.name == "DATAITEM" ? name : "_" + name + "_");
    return true;
  }

  void Insert(const KeptItem& item) {
    const bool is_area = item.collection == kAreas;
    (is_area ? catalogue_grew_ : metadata_grew_) = true;
    DocumentNode* parent = is_area ? catalogue_.Root() : metadata_.Root();
    if (item.collection == kDataGroup) parent = &ChildOf(*parent, "DATACOLLECTION");
    if (!is_area) parent = &ChildOf(*parent, item.collection);
    parent->children.push_back(item.element);
  }

  const Platform& platform_;
  Holdings holdings_;
  DocumentTree metadata_;
  DocumentTree catalogue_;
  bool metadata_grew_ = false;
  bool catalogue_grew_ = false;
  std::map<std::string, std::string> by_guid_;  // identifier -> folder
  std::set<std::string> places_;
  std::set<std::string> names_;  // by tag
};

}  // namespace

Record ToRecord(const Found& found) {
  const DocumentNode& element = found.item.element;
  const std::string folder = element.Attribute("DIRNAME");
  const std::string file = element.Attribute(element.name == "DATAITEM" ? "FILE" : "LAYERFILE");
  return {{"kind", element.name},
          {"name", ItemName(element)},
          {"guid", element.Attribute("GUID")},
          {"place", folder.empty() ? file : folder},
          {"source", found.source},
          {"state", found.state}};
}

std::size_t Adoption::Count() const {
  return static_cast<std::size_t>(std::ranges::count_if(
      found, [](const Found& one) { return one.state == "new" || one.state == "copy"; }));
}

Adoption PlanAdoption(const Platform& platform, const Holdings& holdings, std::string_view folder) {
  return AdoptItems(platform, holdings, SearchItems(platform, folder));
}

Adoption AdoptItems(const Platform& platform, const Holdings& holdings,
                    std::vector<FoundItem> items) {
  Adopter adopter(platform, holdings);
  Adoption adoption;
  for (FoundItem& item : items) adoption.found.push_back(adopter.Take(std::move(item)));
  adoption.result = adopter.Result();
  return adoption;
}

Adoption AdoptCopies(const Platform& platform, const Holdings& holdings,
                     const std::vector<FoundItem>& areas) {
  Adoption adoption = AdoptItems(platform, holdings, areas);
  const std::string name = TextIn(holdings.state, kOpenArea);
  const std::string guid = TextIn(holdings.state, kOpenAreaGuid);
  for (std::size_t i = 0; i < areas.size(); ++i) {
    const DocumentNode& area = areas[i].item.element;
    const DocumentNode& copy = adoption.found[i].item.element;
    if (ItemName(area) != name || (!guid.empty() && area.Attribute("GUID") != guid)) continue;
    adoption.result.state[kOpenArea] = ItemName(copy);
    if (!guid.empty()) adoption.result.state[kOpenAreaGuid] = copy.Attribute("GUID");
  }
  return adoption;
}

Adoption AdoptStaying(const Platform& platform, const Rebase& rebase, const PathPrefix& prefix) {
  std::set<std::string> staying;
  for (const PathChange& area : rebase.staying) staying.insert(area.before);
  Holdings holdings = rebase.result;
  std::vector<FoundItem> areas;
  const DocumentTree catalogue = TreeOf(platform, holdings.catalogue, kAreas);
  for (DocumentNode area : catalogue.Root()->children) {
    if (!staying.contains(area.Attribute("DIRNAME"))) continue;
    const bool is_open = ItemName(area) == TextIn(holdings.state, kOpenArea);
    static_cast<void>(RebaseElements(area, prefix, ""));
    if (platform.files->FolderExists(area.Attribute("DIRNAME"))) {
      areas.push_back({{kAreas, std::move(area)}, "list"});
    } else if (is_open) {
      holdings.state[kOpenArea] = "";
      holdings.state.erase(kOpenAreaGuid);
    }
  }
  return AdoptCopies(platform, holdings, areas);
}

bool LooksLikeStudyArea(const Platform& platform, const std::string& folder) {
  try {
    return platform.files->ReadFile(folder + "\\" + kRecoveryFile).has_value() ||
           platform.files->FolderExists(folder + "\\Analyses") ||
           !platform.files->FindFiles(folder + "\\StudyArea.*").empty();
  } catch (const RuntimeError& error) {
    platform.log->Note(error.what());
    return false;
  }
}

std::vector<std::string> UnlistedAreaFolders(const Platform& platform,
                                             std::string_view working_directory,
                                             std::string_view catalogue) {
  const std::string above = std::string(working_directory) + "StudyAreas\\";
  std::set<std::string> listed;
  const auto tree = ReadDocumentTree(*platform.xml_parser, catalogue);
  if (tree && tree->Root() != nullptr) {
    for (const DocumentNode& area : tree->Root()->children) listed.insert(PlaceOf(platform, area));
  }
  std::vector<std::string> folders = FoldersOf(platform, above);
  std::erase_if(folders, [&](std::string& name) {
    name = above + name;
    return listed.contains(platform.files->FullPath(name));
  });
  return folders;
}

}  // namespace kvdm
