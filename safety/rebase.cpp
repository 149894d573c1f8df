#include "safety/rebase.h"

#include <fmt/format.h>

#include <algorithm>

#include <kvdm/platform/error.h>
#include <kvdm/platform/portable/sidecar_metadata.h>

#include "safety/items.h"

namespace kvdm {
namespace {

DocumentTree Read(const Platform& platform, std::string_view what, std::string_view text) {
  auto tree = ReadDocumentTree(*platform.xml_parser, text);
  if (tree && tree->Root() != nullptr) return std::move(*tree);
  throw Failure(
      ExitCode::kUnreadable,
      fmt::format("{} can't be read, so nothing was changed. 'kvdm status' tells more.", what));
}

bool IsPath(std::string_view attribute) { return attribute != "NAME" && attribute != "GUID"; }

// Adds to `changes` what becomes of `element`, which belongs to `item`, and of all below it.
void RebaseElement(DocumentNode& element, const PathPrefix& prefix, std::string item,
                   std::vector<PathChange>& changes) {
  const bool is_item = !element.Attribute("GUID").empty();
  if (is_item) item = ItemName(element);
  for (auto& [name, value] : element.attributes) {
    auto after = IsPath(name) ? prefix.Replaced(value) : std::nullopt;
    if (!after) continue;
    const std::string field =
        is_item ? name : fmt::format("{} {}", element.name, element.Attribute("NAME"));
    changes.push_back({"", item, field, value, *after});
    value = std::move(*after);
  }
  for (DocumentNode& child : element.children) RebaseElement(child, prefix, item, changes);
}

bool IsThere(const Platform& platform, const std::string& path) {
  try {
    return platform.files->FolderExists(path) || !platform.files->FindFiles(path).empty();
  } catch (const RuntimeError& error) {
    platform.log->Note(fmt::format("{}: {}", path, error.what()));
    return false;
  }
}

std::vector<PathChange> RebaseProperties(PropertySetMap::Properties& properties,
                                         const PathPrefix& prefix, const char* document) {
  std::vector<PathChange> changes;
  for (auto& [name, value] : properties) {
    if (!value.IsText()) continue;
    const std::string before = ToText(value);
    const auto after = prefix.Replaced(before);
    if (!after) continue;
    value = *after;
    changes.push_back({document, name, "", before, *after});
  }
  return changes;
}

std::string RebaseText(const Platform& platform, const std::string& text, const PathPrefix& prefix,
                       std::vector<PathChange>& changes) {
  if (text.empty()) return text;
  DocumentTree tree = Read(platform, "The metadata document of the project", text);
  const auto found = RebaseElements(*tree.Root(), prefix, "project");
  changes.insert(changes.end(), found.begin(), found.end());
  return found.empty() ? text : DocumentTreeText(*platform.xml_parser, tree);
}

// A catalogue with the study areas that go along.
std::string RebaseCatalogue(const Platform& platform, const std::string& text,
                            const PathPrefix& prefix, RebaseStage stage, Rebase& rebase) {
  if (text.empty()) return text;
  DocumentTree tree = Read(platform, "The list of study areas", text);
  const std::size_t before = rebase.changes.size();
  for (DocumentNode& area : tree.Root()->children) {
    const std::string folder = area.Attribute("DIRNAME");
    const auto after = prefix.Replaced(folder);
    if (after && stage == RebaseStage::kMoved && platform.files->FolderExists(folder)) {
      rebase.staying.push_back({"catalogue", ItemName(area), "DIRNAME", folder, folder, true});
      continue;
    }
    const auto found = RebaseElements(area, prefix, "catalogue");
    rebase.changes.insert(rebase.changes.end(), found.begin(), found.end());
  }
  return rebase.changes.size() == before ? text : DocumentTreeText(*platform.xml_parser, tree);
}

// The full paths of the layer files in an element and below it.
void AddLayerFiles(const DocumentNode& element, std::vector<std::string>& files) {
  for (const char* attribute : {"LAYERFILE", "FILE"}) {
    const std::string file = element.Attribute(attribute);
    if (file.find_first_of("\\/:") != file.npos) files.push_back(file);
  }
  for (const DocumentNode& child : element.children) AddLayerFiles(child, files);
}

std::vector<PathChange> RebaseSidecar(const Platform& platform, const std::string& layer_file,
                                      const PathPrefix& prefix, bool writes) {
  std::vector<PathChange> changes;
  const auto metadata = MakeSidecarMetadata(platform, layer_file);
  try {
    const auto document = metadata->ReadDocument();
    const auto listing = document->ListAll();
    for (std::size_t i = 0; i < listing.names.size(); ++i) {
      if (!listing.values[i].IsText()) continue;
      const std::string before = ToText(listing.values[i]);
      const auto after = prefix.Replaced(before);
      if (!after) continue;
      document->PutValue(listing.names[i], *after);
      changes.push_back({"side-car", layer_file, listing.names[i], before, *after, true});
    }
    if (writes && !changes.empty()) metadata->WriteDocument(document);
  } catch (const RuntimeError& error) {
    if (error.number() != kFileNotFound) platform.log->Note(error.what());
    return {};
  }
  return changes;
}

// Replaces a prefix in the text of an element; others stay.
void RebaseElementText(XmlParser& parser, const PathPrefix& prefix, std::string& element) {
  auto tree = element.starts_with('<') ? ReadDocumentTree(parser, element) : std::nullopt;
  if (!tree || tree->Root() == nullptr) return;
  if (!RebaseElements(*tree->Root(), prefix, "").empty()) {
    element = ElementText(parser, *tree->Root());
  }
}

}  // namespace

Record ToRecord(const PathChange& change) {
  return {{"document", change.document}, {"item", change.item},   {"field", change.field},
          {"before", change.before},     {"after", change.after}, {"found", change.is_found}};
}

std::vector<PathChange> Rebase::MissingFolders() const {
  std::vector<PathChange> missing = changes;
  std::erase_if(missing, [](const PathChange& change) {
    return change.is_found || change.field != "DIRNAME";
  });
  return missing;
}

PathPrefix::SamePlace SamePlaceIn(const Platform& platform) {
  return [files = platform.files](std::string_view a, std::string_view b) {
    const bool has_a = files->FolderExists(a);
    if (has_a != files->FolderExists(b)) return false;
    return !has_a || files->FullPath(a) == files->FullPath(b);
  };
}

bool ChangesSettings(const ChangeRecord& record) {
  return std::ranges::find(record.changes, kSettingsDocument, &Change::document) !=
         record.changes.end();
}

ChangeRecord RebasedRecord(XmlParser& parser, ChangeRecord record,
                           std::string_view working_directory) {
  const PathPrefix prefix(record.working_directory, working_directory);
  if (ChangesSettings(record) || prefix.From() == prefix.To()) return record;
  for (auto* moves : {&record.moves, &record.made}) {
    for (Move& move : *moves) move.folder = prefix.Replaced(move.folder).value_or(move.folder);
  }
  for (Change& change : record.changes) {
    for (std::string* text : {&change.before, &change.after}) {
      RebaseElementText(parser, prefix, *text);
    }
  }
  return record;
}

std::vector<PathChange> RebaseElements(DocumentNode& root, const PathPrefix& prefix,
                                       std::string_view document) {
  std::vector<PathChange> changes;
  RebaseElement(root, prefix, "", changes);
  for (PathChange& change : changes) change.document = document;
  return changes;
}

Rebase PlanRebase(const Platform& platform, const Holdings& holdings, const PathPrefix& prefix,
                  RebaseStage stage) {
  Rebase rebase;
  rebase.result = holdings;
  rebase.changes = RebaseProperties(rebase.result.settings, prefix, "settings");
  const auto state = RebaseProperties(rebase.result.state, prefix, "state");
  rebase.changes.insert(rebase.changes.end(), state.begin(), state.end());
  rebase.result.metadata = RebaseText(platform, holdings.metadata, prefix, rebase.changes);
  rebase.result.catalogue = RebaseCatalogue(platform, holdings.catalogue, prefix, stage, rebase);
  for (PathChange& change : rebase.changes) {
    change.is_found =
        IsThere(platform, stage == RebaseStage::kBefore ? change.before : change.after);
  }
  return rebase;
}

std::vector<PathChange> RebaseSidecars(const Platform& platform, std::string_view document,
                                       const PathPrefix& prefix, bool writes) {
  std::vector<PathChange> changes;
  if (document.empty()) return changes;
  std::vector<std::string> files;
  AddLayerFiles(*Read(platform, "A document", document).Root(), files);
  for (const std::string& file : files) {
    const auto found = RebaseSidecar(platform, file, prefix, writes);
    changes.insert(changes.end(), found.begin(), found.end());
  }
  return changes;
}

}  // namespace kvdm
