// What adoption finds on the disk.
#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include <kvdm/platform/error.h>
#include <kvdm/platform/portable/sidecar_metadata.h>

#include "safety/adopt.h"
#include "safety/path_prefix.h"

namespace kvdm {
namespace {

constexpr std::string_view kMetadataPath = "Velk/Kelvaro8/";
constexpr std::string_view kParameters = "Velk/Kelvaro8/AnalysisParams/";
constexpr int kDeepest = 8;

// Kinds of items that have a folder.
struct FolderKind {
  const char* above;       // the folder that such folders stand in
  const char* collection;  // the tags
  const char* tag;
  const char* layer;  // the layer file that the component names
  const char* type;   // what layers' metadata say they describe
};

constexpr FolderKind kFolderKinds[] = {
    {"StudyAreas", "STUDYAREACOLLECTION", "STUDYAREA", "StudyArea.lyr", "Study Area"},
    {"Analyses", "ANALYSISCOLLECTION", "ANALYSIS", "Analysis.lyr", "Analysis Layer"}};

std::string LastName(std::string_view path) {
  while (path.ends_with('\\')) path.remove_suffix(1);
  const auto separator = path.find_last_of('\\');
  return std::string(separator == path.npos ? path : path.substr(separator + 1));
}

std::string TextAt(NamedValueSet& values, std::string_view field) {
  const auto found = values.GetValues(std::string(kMetadataPath) + std::string(field));
  return found.empty() || found.front().IsNull() ? "" : ToText(found.front());
}

// The metadata of a layer; nothing when it has none that can be read.
std::shared_ptr<NamedValueSet> MetadataOf(const Platform& platform, const std::string& layer) {
  try {
    return MakeSidecarMetadata(platform, layer)->ReadDocument();
  } catch (const RuntimeError& error) {
    if (error.number() != kFileNotFound) platform.log->Note(error.what());
    return nullptr;
  }
}

DocumentNode Text(std::string text) { return {DocumentNode::Kind::kText, "", std::move(text)}; }

// Parameters and comments, as far as metadata tell of them.
void AddDetails(DocumentNode& element, NamedValueSet& metadata) {
  const auto listing = metadata.ListAll();
  for (std::size_t i = 0; i < listing.names.size(); ++i) {
    const std::string& name = listing.names[i];
    if (!name.starts_with(kParameters) || listing.values[i].IsNull()) continue;
    DocumentNode parameter{DocumentNode::Kind::kElement, "PARAM"};
    parameter.SetAttribute("NAME", name.substr(kParameters.size()));
    parameter.SetAttribute("VALUE", ToText(listing.values[i]));
    element.children.push_back(std::move(parameter));
  }
  const std::string comments = TextAt(metadata, "Comments");
  if (comments.empty()) return;
  element.children.push_back({DocumentNode::Kind::kElement, "COMMENTS"});
  element.children.back().children.push_back(Text(comments));
}

class Search {
 public:
  explicit Search(const Platform& platform) : platform_(platform) {}

  void In(const std::string& folder, int depth) {
    if (!AddFromItemFile(folder)) AddFromFolder(folder);
    AddLayers(folder);
    if (depth == kDeepest) return;
    for (const std::string& name : FoldersOf(platform_, folder))
      In(folder + name + "\\", depth + 1);
  }

  std::vector<FoundItem> found;

 private:
  // The item of the side-car in a folder, with the paths of that folder.
  bool AddFromItemFile(const std::string& folder) {
    const auto file = Read(folder + kRecoveryFile);
    if (!file) return false;
    for (KeptItem item : file->items) {
      const PathPrefix moved(item.element.Attribute("DIRNAME"), folder);
      RebaseElements(item.element, moved, "");
      found.push_back({std::move(item), "side-car"});
    }
    return true;
  }

  // A folder that stands where those of study areas or analyses do.
  void AddFromFolder(const std::string& folder) {
    const std::string above =
        LastName(folder.substr(0, folder.size() - LastName(folder).size() - 1));
    for (const FolderKind& kind : kFolderKinds) {
      if (above == kind.above) Add(kind, folder);
    }
  }

  void Add(const FolderKind& kind, const std::string& folder) {
    const std::string layer = folder + kind.layer;
    const auto metadata = MetadataOf(platform_, layer);
    const bool has_metadata = metadata && TextAt(*metadata, "LayerType") == kind.type;
    const std::string name = has_metadata ? TextAt(*metadata, "Name") : "";
    DocumentNode element{DocumentNode::Kind::kElement, kind.tag};
    element.SetAttribute("NAME", "_" + (name.empty() ? LastName(folder) : name) + "_");
    element.SetAttribute("GUID", has_metadata ? TextAt(*metadata, "GUID") : "");
    element.SetAttribute("DIRNAME", folder);
    element.SetAttribute("LAYERFILE", layer);
    element.SetAttribute("CREATIONTIME", DateText(platform_.clock->Now()));
    if (has_metadata && kind.tag == std::string_view("ANALYSIS")) AddDetails(element, *metadata);
    found.push_back({{kind.collection, std::move(element)}, has_metadata ? "metadata" : "folder"});
  }

  // The layers of a working directory, with its paths.
  void AddLayers(const std::string& folder) {
    const std::string host = folder + kHostFolder + "\\";
    for (const std::string& name : FilesLike(host + kItemsPrefix + "*.json")) {
      const auto file = Read(host + name);
      if (!file) continue;
      const PathPrefix moved(file->working_directory, folder);
      for (KeptItem item : file->items) {
        RebaseElements(item.element, moved, "");
        found.push_back({std::move(item), "side-car"});
      }
    }
  }

  [[nodiscard]] std::vector<std::string> FilesLike(const std::string& pattern) const {
    try {
      return platform_.files->FindFiles(pattern);
    } catch (const RuntimeError& error) {
      platform_.log->Note(error.what());
      return {};
    }
  }

  [[nodiscard]] std::optional<ItemFile> Read(const std::string& path) const {
    try {
      const auto text = platform_.files->ReadFile(path);
      return text ? ParseItemFile(platform_, *text) : std::nullopt;
    } catch (const RuntimeError& error) {
      platform_.log->Note(error.what());
      return std::nullopt;
    }
  }

  const Platform& platform_;
};

}  // namespace

std::vector<std::string> FoldersOf(const Platform& platform, std::string_view folder) {
  try {
    const auto open = platform.files->OpenFolder(folder);
    auto names = open->Entries();
    const auto files = open->Files();
    std::erase_if(names, [&](const std::string& name) {
      return std::ranges::find(files, name) != files.end();
    });
    return names;
  } catch (const RuntimeError& error) {
    if (error.number() != kPathNotFound) platform.log->Note(error.what());
    return {};
  }
}

std::vector<FoundItem> SearchItems(const Platform& platform, std::string_view folder) {
  Search search(platform);
  search.In(folder.ends_with('\\') ? std::string(folder) : std::string(folder) + "\\", 0);
  return std::move(search.found);
}

}  // namespace kvdm
