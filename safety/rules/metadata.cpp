// Rules of layers' metadata: whether they are there, and describe the item.
#include <fmt/format.h>

#include <set>

#include "safety/paths.h"
#include "safety/rules/rules.h"

namespace kvdm {
namespace {

std::string ExportOf(const SurveyItem& item) {
  return fmt::format("metadata export {}{}", item.Selector(), item.kind->flag);
}

// Calls `look` for each item whose layer is there, with what its metadata say.
template <class Look>
void ForEachLayer(const Survey& survey, Look look) {
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    const bool has_layer = item.is_own && !item.kind->layer_type.empty() &&
                           paths::IsFull(item.file) && survey.Disk().HasFile(item.file);
    if (has_layer) look(i, item, survey.DescriptionOf(item));
  }
}

void FindMissingMetadata(const Survey& survey, Findings& findings) {
  ForEachLayer(survey, [&](std::size_t i, const SurveyItem& item, const LayerDescription& said) {
    if (said.is_there || said.is_foreign) return;
    findings.Add(survey, i, fmt::format("has no metadata with its layer {}.", item.file))
        .At(item.file)
        .By(ExportOf(item));
  });
}

void FindUnreadableMetadata(const Survey& survey, Findings& findings) {
  ForEachLayer(survey, [&](std::size_t i, const SurveyItem& item, const LayerDescription& said) {
    if (said.problem.empty()) return;
    findings.Add(survey, i, fmt::format("has metadata that can't be read: {}.", said.problem))
        .At(item.file)
        .By(ExportOf(item));
  });
}

void FindForeignMetadata(const Survey& survey, Findings& findings) {
  ForEachLayer(survey, [&](std::size_t i, const SurveyItem& item, const LayerDescription& said) {
    if (!said.is_foreign || said.is_there) return;
    findings
        .Add(survey, i,
             fmt::format("has only the metadata of another program, in {}.xml. Its own go beside "
                         "them.",
                         item.file))
        .At(item.file + ".xml")
        .By(ExportOf(item));
  });
}

void FindStaleParameters(const Survey& survey, Findings& findings) {
  ForEachLayer(survey, [&](std::size_t i, const SurveyItem& item, const LayerDescription& said) {
    std::set<std::string> stale = said.parameters;
    for (const DocumentNode& child : item.element->children) stale.erase(child.Attribute("NAME"));
    if (item.kind->tag != "ANALYSIS" || stale.empty()) return;
    findings
        .Add(survey, i,
             fmt::format("has metadata with parameters that it no longer has: {}. An import would "
                         "bring them back.",
                         fmt::join(stale, ", ")))
        .At(item.file);
  });
}

// One property of the metadata against what it should be.
void FindDifferent(const Survey& survey, Findings& findings, std::string LayerDescription::*said,
                   std::string (*wanted)(const SurveyItem&), const char* what) {
  ForEachLayer(survey, [&](std::size_t i, const SurveyItem& item, const LayerDescription& all) {
    if (!all.is_there || !all.problem.empty() || all.*said == wanted(item)) return;
    findings
        .Add(survey, i,
             fmt::format("has metadata of another {}: {} in place of {}.", what,
                         paths::Quoted(all.*said), paths::Quoted(wanted(item))))
        .At(item.file)
        .By(ExportOf(item));
  });
}

void FindOtherType(const Survey& survey, Findings& findings) {
  FindDifferent(
      survey, findings, &LayerDescription::type,
      [](const SurveyItem& item) { return std::string(item.kind->layer_type); }, "kind");
}

void FindOtherGuid(const Survey& survey, Findings& findings) {
  FindDifferent(
      survey, findings, &LayerDescription::guid, [](const SurveyItem& item) { return item.guid; },
      "identifier");
}

void FindOtherName(const Survey& survey, Findings& findings) {
  FindDifferent(
      survey, findings, &LayerDescription::name, [](const SurveyItem& item) { return item.name; },
      "name");
}

using enum Severity;

constexpr Rule kMetadataRules[] = {
    {"metadata.missing", kWarning, "a layer without metadata",
     "Other programs do not know what the layer is, and a lost project can't be put together again "
     "from its layers.",
     "", false, &FindMissingMetadata},
    {"metadata.unreadable", kError, "metadata of a layer that can't be read",
     "An import fails; an export keeps the broken file beside the new one.", "", false,
     &FindUnreadableMetadata},
    {"metadata.foreign", kWarning, "a layer with only the metadata of another program",
     "A lost project can't be put together again from it. An export leaves the other program's "
     "file "
     "as it is.",
     "", false, &FindForeignMetadata},
    {"metadata.stale-parameter", kWarning, "metadata with parameters that the analysis has not",
     "An export adds and never removes, so that an import brings back what was deleted.", "", false,
     &FindStaleParameters},
    {"metadata.type-mismatch", kError, "metadata of another kind of layer",
     "An import does nothing. The file was copied from another layer.", "", false, &FindOtherType},
    {"metadata.guid-mismatch", kError, "metadata with another identifier",
     "An import gives the item the other identifier. The file was copied, or the item got a new "
     "one.",
     "", false, &FindOtherGuid},
    {"metadata.name-differs", kInformation, "metadata with another name",
     "The item was renamed since the last export.", "", false, &FindOtherName}};

}  // namespace

std::span<const Rule> MetadataRules() { return kMetadataRules; }

}  // namespace kvdm
