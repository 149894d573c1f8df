#include "safety/survey.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include <kvdm/platform/error.h>
#include <kvdm/platform/portable/sidecar_metadata.h>

#include "safety/items.h"
#include "safety/paths.h"

namespace kvdm {
namespace {

constexpr StoredKind kKinds[] = {
    {"STUDYAREACOLLECTION", "STUDYAREA", "study area", "area", " --area", "LAYERFILE", "StudyAreas",
     "Study Area", "StudyArea.lyr", true},
    {"ANALYSISCOLLECTION", "ANALYSIS", "analysis", "analysis", "", "LAYERFILE", "Analyses",
     "Analysis Layer", "Analysis.lyr", true},
    {"CUSTLAYERCOLLECTION", "CUSTLAYER", "customer layer", "customer", " --customer", "LAYERFILE",
     "CustLayers", "Customer Layer", "", true},
    {"STORELAYERCOLLECTION", "STORELAYER", "store layer", "store", " --store", "LAYERFILE",
     "StoreLayers", "Store Layer", "", true},
    {"DATACOLLECTION", "DATAITEM", "data item", "data", "", "FILE", "Data", "", "", false}};

// A registered study area or layer of the metadata document has the tag, but another collection.
const StoredKind* KindOf(std::string_view collection, std::string_view tag) {
  if (collection == "SADATACOLLECTION") collection = "DATACOLLECTION";
  const auto* found = std::ranges::find_if(kKinds, [&](const StoredKind& kind) {
    return kind.collection == collection && kind.tag == tag;
  });
  return found == std::end(kKinds) ? nullptr : found;
}

std::string TextProperty(const PropertySetMap::Properties& properties, const char* name) {
  const auto found = properties.find(name);
  return found != properties.end() && found->second.IsText() ? ToText(found->second) : "";
}

constexpr char kTypePath[] = "Velk/Kelvaro8/LayerType";
constexpr char kNamePath[] = "Velk/Kelvaro8/Name";

std::string TextAt(NamedValueSet& metadata, const char* path) {
  const auto values = metadata.GetValues(path);
  return values.empty() || values.front().IsNull() ? "" : ToText(values.front());
}

std::set<std::string> ParametersIn(NamedValueSet& metadata) {
  constexpr std::string_view kParameters = "Velk/Kelvaro8/AnalysisParams/";
  std::set<std::string> parameters;
  for (const std::string& path : metadata.ListAll().names) {
    if (path.starts_with(kParameters)) parameters.insert(path.substr(kParameters.size()));
  }
  return parameters;
}

// Whether a side-car holds a document of another kind.
bool IsForeign(const Platform& platform, const std::string& sidecar) {
  const auto text = platform.files->ReadFile(sidecar);
  const auto tree = text ? ReadDocumentTree(*platform.xml_parser, *text) : std::nullopt;
  return tree && tree->Root() != nullptr && tree->Root()->name != "LAYERMETADATA";
}

bool MayHaveMetadata(const DiskView& disk, const std::string& file) {
  const std::string base(paths::WithoutExtension(paths::LastName(file)));
  return disk.HasFile(file + ".xml") || disk.HasFile(file + ".kvdm.xml") ||
         disk.HasFile(fmt::format("{}\\{}.kvdm.xml", paths::Parent(file), base));
}

void RemoveNameless(DocumentNode& parent) {
  std::erase_if(parent.children, [](const DocumentNode& child) {
    return child.kind == DocumentNode::Kind::kElement && child.name.empty();
  });
  for (DocumentNode& child : parent.children) RemoveNameless(child);
}

// `before` when the tree is still what that text has.
std::string TextOf(XmlParser& parser, std::optional<DocumentTree>& tree,
                   const std::string& before) {
  if (!tree || tree->Root() == nullptr) return before;
  RemoveNameless(*tree->Root());
  if (ReadDocumentTree(parser, before) == tree) return before;
  return DocumentTreeText(parser, *tree);
}

}  // namespace

std::string SurveyItem::Label() const {
  return fmt::format("{} {}", kind->word, name.empty() ? guid : name);
}

std::string SurveyItem::Selector() const {
  return guid.empty() || namesakes > 0 ? paths::Quoted(name) : guid;
}

Survey::Survey(const Subject& subject)
    : subject_(subject),
      disk_(subject.platform.files),
      metadata_(ReadDocumentTree(*subject.platform.xml_parser, subject.stored.metadata)),
      catalogue_(ReadDocumentTree(*subject.platform.xml_parser, subject.stored.catalogue)),
      working_directory_(paths::Plain(TextProperty(subject.stored.settings, kDirectorySetting))) {
  if (auto* root = RootOf(catalogue_)) AddItems(*root, root->name);
  if (auto* root = Metadata()) {
    for (DocumentNode& collection : root->children) {
      if (collection.name != "STUDYAREACOLLECTION") AddItems(collection, collection.name);
    }
  }
  std::map<std::string_view, std::size_t> uses;
  for (const SurveyItem& item : items_) ++uses[item.guid];
  for (SurveyItem& item : items_) item.namesakes = uses[item.guid] - 1;
}

void Survey::AddItems(DocumentNode& parent, const std::string& collection) {
  for (DocumentNode& child : parent.children) {
    if (const StoredKind* kind = KindOf(collection, child.name)) {
      AddItem(*kind, child);
    } else if (child.name == "SADATACOLLECTION") {
      AddItems(child, child.name);
    }
  }
}

void Survey::AddItem(const StoredKind& kind, DocumentNode& element) {
  SurveyItem item{&kind,
                  &element,
                  ItemName(element),
                  element.Attribute("GUID"),
                  element.Attribute("DIRNAME"),
                  element.Attribute(kind.file_attribute)};
  const bool is_area = kind.tag == "STUDYAREA";
  item.is_own = !is_area || item.folder.empty() || paths::IsBelow(item.folder, working_directory_);
  if (kind.tag == "DATAITEM" && element.Attribute("PATHTYPE") == "RELATIVE" && !item.file.empty()) {
    item.is_reserved = true;
    item.file = fmt::format("{}\\{}\\{}", working_directory_, kind.folder, item.file);
  }
  items_.push_back(std::move(item));
}

bool Survey::HasWorkingDirectory() const {
  return !working_directory_.empty() && disk_.HasFolder(working_directory_ + "\\");
}

std::string Survey::State(const char* property) const {
  return TextProperty(subject_.stored.state, property);
}

const LayerDescription& Survey::DescriptionOf(const SurveyItem& item) const {
  return DescriptionOf(item.file);
}

const LayerDescription& Survey::DescriptionOf(const std::string& file) const {
  const auto [found, is_new] = descriptions_.try_emplace(file);
  LayerDescription& description = found->second;
  if (!is_new || file.empty() || !MayHaveMetadata(disk_, file)) return description;
  try {
    description.is_foreign = IsForeign(subject_.platform, file + ".xml");
    const auto metadata = MakeSidecarMetadata(subject_.platform, file)->ReadDocument();
    description = {true,
                   description.is_foreign,
                   "",
                   TextAt(*metadata, kTypePath),
                   TextAt(*metadata, kNamePath),
                   TextAt(*metadata, kGuidPath),
                   ParametersIn(*metadata)};
  } catch (const RuntimeError& error) {
    const bool has_none = error.number() == kFileNotFound;
    if (has_none) return description;
    description.is_there = true;
    description.problem = error.what();
  }
  return description;
}

Holdings Survey::Wanted() {
  XmlParser& parser = *subject_.platform.xml_parser;
  Holdings wanted = subject_.stored;
  wanted.metadata = TextOf(parser, metadata_, wanted.metadata);
  wanted.catalogue = TextOf(parser, catalogue_, wanted.catalogue);
  return wanted;
}

std::optional<std::int64_t> SecondsOf(std::string_view stored_time) {
  int month = 0;
  int day = 0;
  int year = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  char half = 0;
  const std::string text(stored_time);
  const int read = std::sscanf(text.c_str(), "%2d/%2d/%4d %2d:%2d:%2d %cM", &month, &day, &year,
                               &hour, &minute, &second, &half);
  const bool fits = read == 7 && (half == 'A' || half == 'P');
  const std::chrono::year_month_day date{std::chrono::year(year),
                                         std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  if (!fits || !date.ok()) return std::nullopt;
  const std::int64_t days = std::chrono::sys_days(date).time_since_epoch().count();
  return ((days * 24 + hour % 12 + (half == 'P' ? 12 : 0)) * 60 + minute) * 60 + second;
}

}  // namespace kvdm
