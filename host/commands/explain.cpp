// kvdm explain: what a rule of the check, or a message of the component, means.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>

#include "host/commands/groups.h"
#include "safety/check.h"
#include "util/messages.h"

namespace kvdm {
namespace {

// What stands behind messages of one kind, and the rules that find the usual causes.
struct MessageKind {
  std::span<const char* const> messages;
  std::string_view meaning;
  std::string_view rules;
};

constexpr const char* kMaking[] = {messages::kCreateAnalysis,
                                   messages::kCreateStudyArea,
                                   messages::kCreateStoreLayer,
                                   messages::kCreateCustLayer,
                                   messages::kCreateDataItem,
                                   messages::kNewDirName,
                                   messages::kFreeTablePath,
                                   messages::kTempFile,
                                   messages::areas::kCreateStudyArea,
                                   messages::kStudyAreaTablesDir,
                                   messages::areas::kRegisterCustLayer,
                                   messages::areas::kRegisterStoreLayer};
constexpr const char* kDeleting[] = {messages::kDeleteAnalysis,
                                     messages::kDeleteStudyArea,
                                     messages::kDeleteStoreLayer,
                                     messages::kDeleteCustLayer,
                                     messages::kDeleteDataItem,
                                     messages::areas::kDeleteStudyArea,
                                     messages::areas::kUnregisterCustLayer,
                                     messages::areas::kUnregisterStoreLayer};
constexpr const char* kLooking[] = {messages::kAnalysesList,
                                    messages::kGetAnalysis,
                                    messages::kStudyAreasList,
                                    messages::kGetStudyArea,
                                    messages::kStoreLayersList,
                                    messages::kGetStoreLayer,
                                    messages::kCustLayersList,
                                    messages::kGetCustLayer,
                                    messages::kDataList,
                                    messages::kGetDataItem,
                                    messages::kDataDir,
                                    messages::kParametersList,
                                    messages::kStudyAreaGuid,
                                    messages::kStudyAreaDataset,
                                    messages::kReload,
                                    messages::areas::kListStudyAreas,
                                    messages::areas::kGetStudyArea,
                                    messages::areas::kListCustLayers,
                                    messages::areas::kGetCustLayer,
                                    messages::areas::kCustLayerExists,
                                    messages::areas::kCustLayerExistsByGuid,
                                    messages::areas::kListStoreLayers,
                                    messages::areas::kGetStoreLayer,
                                    messages::areas::kStoreLayerExists,
                                    messages::areas::kStoreLayerExistsByGuid,
                                    messages::kCannotFindProperty};
constexpr const char* kChanging[] = {
    messages::kSetParameter,        messages::kSetDataItemParameter,
    messages::kRenameAnalysis,      messages::kAnalysisLayerFile,
    messages::kAnalysisGuid,        messages::kLayerFile,
    messages::kLayerGuid,           messages::kRenameStudyArea,
    messages::kSetStudyAreaDataset, messages::kSetStudyAreaLayerFile,
    messages::kSetStudyAreaGuid,    messages::kSetStudyAreaDir,
    messages::kCannotSetProperty,   messages::areas::kWriteAlias};
constexpr const char* kStarting[] = {
    messages::kWorkingDirectorySettings, messages::kInvalidWorkingDirectorySelected,
    messages::kInvalidWorkingDirectory, messages::kWorkingDirectoryStructure};
constexpr const char* kSavingDocuments[] = {messages::kSaving};
constexpr const char* kPresets[] = {messages::kPresetDirectory, messages::kPresetList,
                                    messages::kPresetFile};
constexpr const char* kReachingCollections[] = {messages::kAnalysisCollection,
                                                messages::kStudyAreaCollection,
                                                messages::kStoreLayerCollection,
                                                messages::kCustLayerCollection,
                                                messages::kDataCollection,
                                                messages::kTablesManager,
                                                messages::areas::kNoStudyAreasToList,
                                                messages::areas::kNoStudyAreas,
                                                messages::areas::kNoDocumentElement};

constexpr MessageKind kKinds[] = {
    {kMaking,
     "Nothing was made. A folder or file can't be made, its name can't be one, or the document "
     "can't "
     "be changed.",
     "workdir permission registry name"},
    {kDeleting,
     "The item stays in its list. A folder or file can't be deleted, or no item has that name; "
     "files "
     "that were reached before may be gone.",
     "permission folder.missing path.delete-hazard registry"},
    {kLooking,
     "An element lacks what every item has, or a name or identifier holds a double quote.",
     "attribute element name guid project"},
    {kChanging,
     "The item is as it was, but for what was set before the failure. The name is taken, the item "
     "is "
     "gone from the document, or its layer's metadata can't be read or written.",
     "attribute name metadata permission"},
    {kStarting,
     "The component has no folder to work in. It is missing, on a drive that is not there, or "
     "can't "
     "be written.",
     "workdir permission"},
    {kSavingDocuments,
     "What was changed is not in the project yet. The program's own stream refused it; save again.",
     "project permission"},
    {kPresets, "There are no preset data: their folder is not set, or its list can't be read.",
     "preset"},
    {kReachingCollections,
     "The document has no such collection, and none can be made: it is missing, or another "
     "document.",
     "project catalogue registry"}};

std::string Lowered(std::string_view text) {
  std::string lowered(text);
  for (char& letter : lowered) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return lowered;
}

// Whether one text is in the other, in whatever letter case.
bool Fits(std::string_view message, const std::string& asked) {
  const std::string known = Lowered(message);
  return !asked.empty() && (known.find(asked) != known.npos || asked.find(known) != asked.npos);
}

std::vector<Record> MessagesLike(const std::string& asked) {
  std::vector<Record> rows;
  for (const MessageKind& kind : kKinds) {
    for (const char* message : kind.messages) {
      if (!Fits(message, asked)) continue;
      rows.push_back({{"message", std::string(message)},
                      {"meaning", std::string(kind.meaning)},
                      {"command", fmt::format("kvdm check --only {}", kind.rules)}});
    }
  }
  return rows;
}

Record RowOf(const Rule& rule) {
  return {
      {"rule", std::string(rule.name)},
      {"severity", std::string(NameOf(rule.severity))},
      {"detects", std::string(rule.detects)},
      {"why", std::string(rule.why)},
      {"repair", rule.repair.empty() ? Field() : std::string(rule.repair)},
      {"command", rule.repair.empty() ? Field() : fmt::format("kvdm doctor --fix {}", rule.name)},
      {"safe", rule.is_safe}};
}

std::string Paragraph(const Record& row) {
  std::string text;
  for (const auto& [name, field] : row) {
    const auto* value = std::get_if<std::string>(&field);
    if (value == nullptr) continue;
    text += text.empty() ? *value : fmt::format("\n  {}: {}", name, *value);
  }
  return text;
}

class Explain : public Command {
 public:
  explicit Explain(Arguments arguments) {
    arguments.Required("TOPIC", topic_,
                       "A rule or group of rules, or a message of the component or a part of one");
  }

  void Execute(const Invocation& invocation) override {
    auto rows = MessagesLike(Lowered(topic_));
    if (IsRule()) rows = RulesLike();
    if (rows.empty()) {
      throw Failure(ExitCode::kNotFound,
                    fmt::format("There is no rule and no message {}. 'kvdm check --rules' lists "
                                "the rules; --debug shows the cause behind a message.",
                                topic_));
    }
    std::string text;
    for (const Record& row : rows) text += (text.empty() ? "" : "\n") + Paragraph(row);
    invocation.out.Lines({}, "items", std::move(rows), text);
  }

 private:
  [[nodiscard]] bool IsRule() const {
    return std::ranges::any_of(Rules(), [&](const Rule* rule) {
      return rule->name == topic_ || rule->name.starts_with(topic_ + ".");
    });
  }

  [[nodiscard]] std::vector<Record> RulesLike() const {
    std::vector<Record> rows;
    for (const Rule* rule : RulesNamed({topic_})) rows.push_back(RowOf(*rule));
    return rows;
  }

  std::string topic_;
};

}  // namespace

void AddExplainCommand(const CommandGroup& root) {
  root.Add<Explain>("explain", "Tell what a rule or a message means, and what to do",
                    "kvdm explain folder.missing\nkvdm explain guid\n"
                    "kvdm explain \"Couldn't delete Analysis\"");
}

}  // namespace kvdm
