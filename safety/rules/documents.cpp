// Rules of the registry and the documents: whether they can be read, and hold what they should.
#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "safety/paths.h"
#include "safety/rules/rules.h"

namespace kvdm {
namespace {

constexpr char kCatalogueRoot[] = "STUDYAREACOLLECTION";
constexpr char kEmptyCatalogue[] = "<STUDYAREACOLLECTION/>";
constexpr const char* kCollections[] = {"CUSTLAYERCOLLECTION", "STORELAYERCOLLECTION",
                                        "ANALYSISCOLLECTION", "DATACOLLECTION"};

void FindState(const Survey& survey, Findings& findings,
               std::initializer_list<RegistryState> states, const char* command) {
  const RegistryCondition& condition = survey.About().condition;
  if (std::ranges::find(states, condition.state) == states.end()) return;
  findings
      .Add(fmt::format("The registry {} {} ({}). {}", survey.About().registry, condition.Sentence(),
                       condition.cause, condition.Advice()))
      .At(survey.About().registry)
      .By(command);
}

void FindNotADatabase(const Survey& survey, Findings& findings) {
  FindState(survey, findings, {RegistryState::kNotADatabase, RegistryState::kDamaged},
            "catalogue renew");
}

void FindNewer(const Survey& survey, Findings& findings) {
  FindState(survey, findings, {RegistryState::kNewer}, "");
}

void FindUnreadableRegistry(const Survey& survey, Findings& findings) {
  using enum RegistryState;
  FindState(survey, findings, {kBusy, kForeign, kForbidden, kTooLarge, kFailing}, "");
}

void FindReadOnly(const Survey& survey, Findings& findings) {
  FindState(survey, findings, {RegistryState::kReadOnly}, "");
}

// Whether the catalogue, as a text, was read, and is not nothing.
bool HasCatalogueText(const Survey& survey) {
  return survey.About().has_catalogue && !survey.About().stored.catalogue.empty();
}

void FindUnparsableCatalogue(const Survey& survey, Findings& findings) {
  if (!HasCatalogueText(survey) || survey.Catalogue() != nullptr) return;
  findings
      .Add(
          "The list of study areas is not well-formed XML, or over a limit of documents. The next "
          "program that saves it puts an empty one in its place.")
      .At(survey.About().registry);
}

void FindWrongRoot(const Survey& survey, Findings& findings) {
  const DocumentNode* root = survey.Catalogue();
  if (root == nullptr || root->name == kCatalogueRoot) return;
  findings
      .Add(fmt::format("The list of study areas is a document of another kind: its root is {}.",
                       root->name))
      .At(survey.About().registry);
}

// The newest catalogue among the states that were kept; an empty one when there is none.
void RestoreCatalogue(Survey& survey, const Finding& /*finding*/, Repair& repair) {
  const Subject& subject = survey.About();
  for (auto kept = subject.kept.rbegin(); kept != subject.kept.rend(); ++kept) {
    const auto tree = ReadDocumentTree(*subject.platform.xml_parser, kept->value.data);
    if (!tree || tree->Root()->name != kCatalogueRoot) continue;
    repair.steps.push_back(fmt::format("the list of study areas: as it was kept at {}, with {}",
                                       kept->when, tree->Root()->children.size()));
    repair.wanted.catalogue = kept->value.data;
    return;
  }
  repair.steps.emplace_back(
      "the list of study areas: a new one without any, as no earlier one was kept");
  repair.wanted.catalogue = kEmptyCatalogue;
}

void FindEmptyCatalogue(const Survey& survey, Findings& findings) {
  if (!survey.About().has_catalogue || !survey.HasWorkingDirectory()) return;
  const bool has_own = std::ranges::any_of(survey.Items(), [&](const SurveyItem& item) {
    return item.kind->tag == "STUDYAREA" && (item.is_own || MovedPath(survey, item.folder));
  });
  const std::string folder = survey.WorkingDirectory() + "\\StudyAreas";
  const auto names = survey.Disk().FoldersIn(folder);
  if (has_own || names.empty()) return;
  findings
      .Add(fmt::format("No study area of this working directory is in the list of study areas, but "
                       "there are folders of some: {}.",
                       fmt::join(names, ", ")))
      .At(folder)
      .By("adopt");
}

void FindKept(const Survey& survey, Findings& findings) {
  if (survey.About().kept.empty()) return;
  findings
      .Add(fmt::format("{} earlier states of study areas, which gave way to others, are kept.",
                       survey.About().kept.size()))
      .By("catalogue history");
}

void FindUnparsableProject(const Survey& survey, Findings& findings) {
  if (!survey.About().problem.empty()) {
    findings.Add("The project can't be read. " + survey.About().problem);
  } else if (survey.Metadata() == nullptr) {
    findings.Add(
        "The metadata document of the project is not well-formed XML, or over a limit of "
        "documents.");
  }
}

void RestoreProject(Survey& survey, const Finding& /*finding*/, Repair& repair) {
  const auto& previous = survey.About().previous;
  if (!previous) return;
  repair.steps.emplace_back("the project: as it was before the last change");
  const std::string catalogue = repair.wanted.catalogue;
  repair.wanted = *previous;
  repair.wanted.catalogue = catalogue;
}

void FindMissingCollection(const Survey& survey, Findings& findings) {
  const DocumentNode* root = survey.Metadata();
  if (root == nullptr) return;
  for (const char* collection : kCollections) {
    if (root->Child(collection) != nullptr) continue;
    findings.Add(fmt::format("The metadata document has no {}.", collection)).At(collection);
  }
}

void AddCollection(Survey& survey, const Finding& finding, Repair& repair) {
  repair.steps.push_back(fmt::format("the metadata document: gets an empty {}", finding.path));
  survey.Metadata()->children.push_back({.name = finding.path});
}

// What XML 1.0 can't hold: control characters, as bytes or as references, and U+FFFE and U+FFFF.
struct Illegal {
  std::size_t place = 0;
  std::size_t length = 0;
};

bool IsForbidden(std::uint32_t character) {
  const bool is_space = character == '\t' || character == '\n' || character == '\r';
  return (character < 0x20 && !is_space) || character == 0xFFFE || character == 0xFFFF ||
         (character >= 0xD800 && character < 0xE000) || character > 0x10FFFF;
}

// The length of a reference to a character that there can't be; 0 for anything else.
std::size_t ForbiddenReference(std::string_view text) {
  const std::size_t end = text.find(';');
  constexpr std::size_t kLongest = 12;
  if (!text.starts_with("&#") || end == text.npos || end > kLongest) return 0;
  const bool is_hexadecimal = text[2] == 'x';
  const std::string digits(text.substr(is_hexadecimal ? 3 : 2, end - (is_hexadecimal ? 3 : 2)));
  char* rest = nullptr;
  const auto number = std::strtoul(digits.c_str(), &rest, is_hexadecimal ? 16 : 10);
  const bool is_number = !digits.empty() && *rest == '\0';
  return is_number && IsForbidden(static_cast<std::uint32_t>(number)) ? end + 1 : 0;
}

std::size_t ForbiddenAt(std::string_view text) {
  const auto first = static_cast<unsigned char>(text.front());
  if (first == '&') return ForbiddenReference(text);
  if (first < 0x20 && IsForbidden(first)) return 1;
  return text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF") ? 3 : 0;
}

std::vector<Illegal> IllegalIn(std::string_view text) {
  std::vector<Illegal> found;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = ForbiddenAt(text.substr(i));
    if (length > 0) found.push_back({i, length});
    i += std::max<std::size_t>(length, 1);
  }
  return found;
}

// What stands around a place, with "?" for what can't be shown.
std::string Around(std::string_view text, const Illegal& place) {
  constexpr std::size_t kBefore = 20;
  constexpr std::size_t kAfter = 4;
  const std::size_t from = place.place < kBefore ? 0 : place.place - kBefore;
  std::string shown(text.substr(from, place.place - from + place.length + kAfter));
  for (char& character : shown) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte < 0x20 || byte >= 0x7F) character = '?';
  }
  return shown;
}

void FindIllegalIn(std::string_view what, const std::string& text, Findings& findings) {
  const auto places = IllegalIn(text);
  if (places.empty()) return;
  findings
      .Add(fmt::format(
          "{} holds what XML can't hold, in number {}, so it can't be loaded. The first is in: {}",
          what, places.size(), Around(text, places.front())))
      .At(what);
}

constexpr char kMetadataText[] = "The metadata document";
constexpr char kCatalogueText[] = "The list of study areas";

// A text that could be loaded has none.
void FindIllegalCharacters(const Survey& survey, Findings& findings) {
  const Holdings& stored = survey.About().stored;
  if (survey.Metadata() == nullptr) FindIllegalIn(kMetadataText, stored.metadata, findings);
  if (survey.Catalogue() == nullptr) FindIllegalIn(kCatalogueText, stored.catalogue, findings);
}

void ReplaceIllegalCharacters(Survey& /*survey*/, const Finding& finding, Repair& repair) {
  constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
  std::string& text =
      finding.path == kMetadataText ? repair.wanted.metadata : repair.wanted.catalogue;
  auto places = IllegalIn(text);
  for (const Illegal& place : places) {
    repair.steps.push_back(
        fmt::format("byte {}: {} gets U+FFFD", place.place, Around(text, place)));
  }
  std::ranges::reverse(places);
  for (const Illegal& place : places) text.replace(place.place, place.length, kReplacement);
}

// What another program stored since an embedding host read it, and what that has not stored yet.
void FindStaleCatalogue(const Survey& survey, Findings& findings) {
  const Subject& subject = survey.About();
  const bool is_stale =
      subject.held && subject.has_catalogue && subject.held->catalogue != subject.stored.catalogue;
  if (!is_stale) return;
  findings.Add(
      "The list of study areas is not as it was read: another program changed it, or it is not "
      "saved. A save keeps what both changed.");
}

void FindUnsavedProject(const Survey& survey, Findings& findings) {
  const Subject& subject = survey.About();
  if (!subject.held || subject.held->metadata == subject.stored.metadata) return;
  findings.Add("The metadata document has changes that are not saved.").By("project save");
}

void FindUnlistedData(const Survey& survey, Findings& findings) {
  const auto* collection = survey.Metadata() ? survey.Metadata()->Child("DATACOLLECTION") : nullptr;
  if (collection == nullptr) return;
  const auto count = std::ranges::count_if(
      collection->children, [](const DocumentNode& child) { return child.name == "DATAITEM"; });
  if (count == 0) return;
  findings
      .Add(fmt::format("Data items, in number {}, stand where programs that embed the component do "
                       "not list them.",
                       count))
      .By("data list");
}

void FindUnknown(const DocumentNode& collection, std::string_view tag, Findings& findings) {
  for (const DocumentNode& child : collection.children) {
    const bool is_known = child.kind != DocumentNode::Kind::kElement || child.name == tag ||
                          child.name == "SADATACOLLECTION";
    if (is_known) continue;
    findings.Add(
        fmt::format("{} holds an element {}, which nothing knows.", collection.name, child.name));
  }
}

void FindUnknownElements(const Survey& survey, Findings& findings) {
  if (const DocumentNode* root = survey.Catalogue()) {
    if (root->name == kCatalogueRoot) FindUnknown(*root, "STUDYAREA", findings);
  }
  constexpr std::pair<const char*, const char*> kTags[] = {{"CUSTLAYERCOLLECTION", "CUSTLAYER"},
                                                           {"STORELAYERCOLLECTION", "STORELAYER"},
                                                           {"ANALYSISCOLLECTION", "ANALYSIS"},
                                                           {"DATACOLLECTION", "DATAITEM"}};
  for (const auto& [collection, tag] : kTags) {
    const auto* element = survey.Metadata() ? survey.Metadata()->Child(collection) : nullptr;
    if (element != nullptr) FindUnknown(*element, tag, findings);
  }
}

using enum Severity;

constexpr Rule kDocumentRules[] = {
    {"registry.not-a-database", kError, "the registry is no database, or a damaged one",
     "No study area can be listed or changed, and a save would lose what is there. A copy from a "
     "backup brings it back; without one, set it aside.",
     "", false, &FindNotADatabase},
    {"registry.newer", kError, "a newer program wrote the registry",
     "What a newer program wrote is not understood here and must not be overwritten. Update this "
     "program.",
     "", false, &FindNewer},
    {"registry.unreadable", kError, "the registry can't be read",
     "No study area can be listed while it is so. The sentence names the cause; mend the right, "
     "the disk or the other program.",
     "", false, &FindUnreadableRegistry},
    {"registry.read-only", kWarning, "the registry can't be written",
     "Study areas can be read, but none made, renamed or deleted. Ask for the right to write it.",
     "", false, &FindReadOnly},
    {"xml.illegal-character", kError, "a document holds a character that XML can't hold",
     "A document with such a character is not loaded, so that all of it seems to be gone.",
     "replaces it by U+FFFD", false, &FindIllegalCharacters, &ReplaceIllegalCharacters},
    {"catalogue.unparsable", kError, "the list of study areas can't be read",
     "The study areas of all projects are out of reach, and the next program that saves writes an "
     "empty list.",
     "the newest good one that was kept, or an empty one", false, &FindUnparsableCatalogue,
     &RestoreCatalogue},
    {"catalogue.wrong-root", kError, "the list of study areas is another document",
     "No study area is found in a document of another kind.",
     "the newest good one that was kept, or an empty one", false, &FindWrongRoot,
     &RestoreCatalogue},
    {"catalogue.empty", kWarning, "folders of study areas, but none of them in the list",
     "The list was lost, or is that of another user or computer. What lies in the folders can be "
     "adopted.",
     "", false, &FindEmptyCatalogue},
    {"catalogue.kept", kInformation, "states of study areas that gave way to others",
     "Somebody changed the same at the same time. Look whether anything is missing before the "
     "oldest go.",
     "", false, &FindKept},
    {"project.unparsable", kError, "the project or its metadata document can't be read",
     "Nothing of the project can be used until an earlier state is brought back.",
     "the state before the last change", false, &FindUnparsableProject, &RestoreProject},
    {"project.missing-collection", kInformation, "the metadata document lacks a collection",
     "It is added at the first use; until then lists are empty.", "adds it", true,
     &FindMissingCollection, &AddCollection},
    {"catalogue.stale", kWarning, "the list of study areas is not as a program read it",
     "What is shown may be old. A save puts both changes together, element by element.", "", false,
     &FindStaleCatalogue},
    {"project.unsaved", kInformation, "changes that a program has not saved",
     "What is not saved is lost when the program ends.", "", false, &FindUnsavedProject},
    {"data.unlisted", kInformation, "data items that the component's lists leave out",
     "Programs that embed the component show fewer data items than there are. Nothing is wrong "
     "with the items.",
     "", false, &FindUnlistedData},
    {"element.unknown", kWarning, "an element that nothing knows",
     "Another program or version wrote it. It is kept as it is.", "", false, &FindUnknownElements}};

}  // namespace

std::span<const Rule> DocumentRules() { return kDocumentRules; }

}  // namespace kvdm
