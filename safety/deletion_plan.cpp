#include "safety/deletion_plan.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <system_error>
#include <utility>

#include <kvdm/platform/document_tree.h>

#include "safety/items.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

struct KindWords {
  std::string_view tag;
  std::string_view one;
  std::string_view several;
};
constexpr std::array<KindWords, 5> kKinds = {{{"STUDYAREA", "study area", "study areas"},
                                              {"ANALYSIS", "analysis", "analyses"},
                                              {"STORELAYER", "store layer", "store layers"},
                                              {"CUSTLAYER", "customer layer", "customer layers"},
                                              {"DATAITEM", "data item", "data items"}}};

std::string KindOf(const DocumentNode& element) {
  const auto found = std::ranges::find(kKinds, element.name, &KindWords::tag);
  return found == kKinds.end() ? element.name : std::string(found->one);
}

// The folder of an item, or the file of one that has none.
std::string PathOf(const DocumentNode& element) {
  for (const char* attribute : {"DIRNAME", "LAYERFILE", "FILE"}) {
    std::string path = element.Attribute(attribute);
    if (!path.empty()) return path;
  }
  return "";
}

void AddItems(XmlParser& parser, const std::string& text, std::vector<ItemInFolder>& items) {
  const auto tree = ReadDocumentTree(parser, text);
  const DocumentNode* root = tree ? tree->Root() : nullptr;
  if (root == nullptr) return;
  for (const StoredItem& item : ItemsIn(*root)) {
    const DocumentNode& element = *item.element;
    items.push_back(
        {KindOf(element), ItemName(element), element.Attribute("GUID"), PathOf(element)});
  }
}

// The items but for one that is the target, with their places.
struct PlacedItem {
  ItemInFolder item;
  fs::path place;
};
std::vector<PlacedItem> OtherItems(XmlParser& parser, const Documents& documents,
                                   const WorkingDirectory& working_directory,
                                   const DeletionTarget& target) {
  std::vector<ItemInFolder> items;
  for (const char* name : {kProjectDocument, kCatalogueDocument}) {
    if (documents.contains(name)) AddItems(parser, documents.at(name), items);
  }
  const auto same = std::ranges::find_if(items, [&](const ItemInFolder& item) {
    return item.kind == target.kind && item.guid == target.guid && item.name == target.name;
  });
  if (same != items.end()) items.erase(same);
  std::vector<PlacedItem> placed;
  for (ItemInFolder& item : items) {
    auto place = working_directory.PlaceOf(item.path);
    if (place) placed.push_back({std::move(item), *std::move(place)});
  }
  return placed;
}

bool LeadsThroughLink(const fs::path& path, const WorkingDirectory& working_directory) {
  fs::path at = path.has_filename() ? path : path.parent_path();
  while (at.has_relative_path() && !os::AreSame(Resolved(at), working_directory.Place())) {
    if (os::IsLink(at)) return true;
    at = at.parent_path();
  }
  return false;
}

bool IsInItsPlace(const fs::path& place, const WorkingDirectory& working_directory) {
  for (const char* name : {"StudyAreas", "Analyses"}) {
    const fs::path top = Resolved(working_directory.Place() / name);
    const bool is_own = IsAtOrBelow(top, working_directory.Place());
    if (is_own && IsAtOrBelow(place, top) && !os::AreSame(place, top)) return true;
  }
  return false;
}

// Why a folder must not go, as the end of a sentence that begins with it; "" when nothing speaks
// against it. For what holds more than a project, of which nobody counts the files:
std::string GreatObjection(const fs::path& place, const WorkingDirectory& working_directory) {
  if (!place.has_relative_path()) return "is the root of a drive";
  const fs::path home = os::HomeFolder();
  if (!home.empty() && IsAtOrBelow(Resolved(home), place)) return "holds a home folder";
  return IsAtOrBelow(working_directory.Place(), place) ? "holds the working directory" : "";
}

std::string Objection(const fs::path& native, const WorkingDirectory& working_directory,
                      const std::vector<PlacedItem>& others) {
  const fs::path place = Resolved(native);
  if (LeadsThroughLink(native, working_directory)) return "is reached through a link";
  if (!IsInItsPlace(place, working_directory)) {
    return fmt::format("is not in the folder StudyAreas or Analyses of the working directory {}",
                       working_directory.Path());
  }
  const auto shared = std::ranges::find_if(
      others, [&](const PlacedItem& other) { return os::AreSame(other.place, place); });
  if (shared == others.end()) return "";
  return fmt::format("belongs to the {} {} too", shared->item.kind, shared->item.name);
}

std::string Counted(std::int64_t count, std::string_view one, std::string_view several) {
  return fmt::format("{} {}", count, count == 1 ? one : several);
}

// Looks at the folder that goes.
void Examine(DeletionPlan& plan, const WorkingDirectory& working_directory,
             const std::vector<PlacedItem>& others) {
  const std::string& folder = plan.target.folder;
  plan.place = os::NativePlace(working_directory.Drives(), folder);
  if (!plan.place) {
    plan.objection = fmt::format("The folder \"{}\" is no full path on this computer.", folder);
    return;
  }
  plan.folder_is_there = os::FindFolder(working_directory.Drives(), folder).has_value();
  if (!plan.folder_is_there) return;
  const fs::path place = Resolved(*plan.place);
  std::string objection = GreatObjection(place, working_directory);
  plan.is_counted = objection.empty();
  if (plan.is_counted) {
    plan.size = os::SizeOfTree(*plan.place);
    for (const PlacedItem& other : others) {
      if (IsAtOrBelow(other.place, place)) plan.dangling.push_back(other.item);
    }
    objection = Objection(*plan.place, working_directory, others);
  }
  if (!objection.empty()) plan.objection = fmt::format("The folder {} {}.", folder, objection);
}

}  // namespace

DeletionPlan PlanDeletion(XmlParser& parser, const Documents& documents,
                          const WorkingDirectory& working_directory, DeletionTarget target) {
  DeletionPlan plan;
  plan.target = std::move(target);
  if (plan.target.folder.empty()) return plan;
  Examine(plan, working_directory, OtherItems(parser, documents, working_directory, plan.target));
  return plan;
}

std::string QuestionOf(const DeletionPlan& plan) {
  std::vector<std::string> parts;
  for (const KindWords& kind : kKinds) {
    const auto count = std::ranges::count(plan.dangling, kind.one, &ItemInFolder::kind);
    if (count > 0) parts.push_back(Counted(count, kind.one, kind.several));
  }
  if (plan.folder_is_there && plan.is_counted) {
    parts.push_back(Counted(plan.size.files, "file", "files"));
    parts.push_back(SizeText(plan.size.bytes));
    if (!plan.size.is_whole) parts.emplace_back("and what can't be looked at");
  } else if (plan.folder_is_there) {
    parts.push_back(fmt::format("all of the folder {}", plan.target.folder));
  }
  return fmt::format("Delete {} {}{}{}?", plan.target.kind, plan.target.name,
                     parts.empty() ? "" : " with ", fmt::join(parts, ", "));
}

Record CountsOf(const DeletionPlan& plan) {
  return {{"question", QuestionOf(plan)},
          {"refused", plan.objection.empty() ? Field() : Field(plan.objection)},
          {"dangling", static_cast<std::int64_t>(plan.dangling.size())},
          {"folders", std::int64_t{plan.folder_is_there ? 1 : 0}},
          {"files", plan.is_counted ? Field(plan.size.files) : Field()},
          {"bytes", plan.is_counted ? Field(plan.size.bytes) : Field()}};
}

std::vector<Record> RowsOf(const DeletionPlan& plan) {
  const auto row = [](const char* effect, const auto& item, const std::string& path) -> Record {
    return {{"effect", std::string(effect)},
            {"kind", item.kind},
            {"name", item.name},
            {"guid", item.guid},
            {"path", path.empty() ? Field() : Field(path)}};
  };
  std::vector<Record> rows = {row("deleted", plan.target, plan.target.folder)};
  for (const ItemInFolder& item : plan.dangling) rows.push_back(row("dangling", item, item.path));
  return rows;
}

std::string SizeText(std::int64_t bytes) {
  constexpr double kStep = 1000;
  if (bytes < static_cast<std::int64_t>(kStep)) return Counted(bytes, "byte", "bytes");
  double size = static_cast<double>(bytes);
  std::string_view unit;
  for (const std::string_view larger : {"kB", "MB", "GB", "TB"}) {
    if (size < kStep) break;
    size /= kStep;
    unit = larger;
  }
  return fmt::format("{:.1f} {}", size, unit);
}

}  // namespace kvdm
