// kvdm analysis: the analyses of a project.
#include "host/commands/groups.h"
#include "host/commands/item_comment.h"
#include "host/commands/item_params.h"
#include "host/commands/item_set.h"
#include "host/deletion.h"
#include "host/sources.h"

namespace kvdm {
namespace {

constexpr char kNameHelp[] = "An analysis, by name or {GUID}";

// What the commands that all kinds of items have need of analyses.
struct AnalysisItems {
  using Item = IKVAnalysis;
  static constexpr char kWord[] = "analysis";
  static constexpr char kCommand[] = "analysis";

  static std::shared_ptr<Item> Find(Session& session, const std::string& selector) {
    return FindItem(Analyses(session), selector);
  }

  static std::vector<SettableField<Item>> SettableFields() {
    return {{"--created", "When it was made, as a text", &SetText<&Item::SetCreationTime>},
            {"--guid", "Another identifier, as a layer editor sets it", &SetIdentifier}};
  }
};

class AnalysisList : public ReadingCommand {
 public:
  explicit AnalysisList(Arguments) {}

 private:
  void Run(Session& session, Output& out) override {
    const auto source = Analyses(session);
    out.Items(Descriptions(source, AllItems(source)), "There are no analyses.");
  }
};

class AnalysisCreate : public ChangingCommand {
 public:
  explicit AnalysisCreate(Arguments arguments) {
    arguments.Required("NAME", name_, "Its name, which names its folder too; need not be unique",
                       RequireNewName);
  }

 private:
  void Run(Session& session, Output& out) override {
    RequireCurrentArea(session);
    if (!AnalysisCollection(session)->CreateAnalysis(name_)) {
      throw Failure(ExitCode::kRefused,
                    fmt::format("The folder of the analysis {} could not be made, so there is no "
                                "new analysis.",
                                name_));
    }
    const auto source = Analyses(session);
    const auto analysis = NewItem(source, name_);
    session.UnlessSaved([&files = *session.Component().GetServices().platform.files,
                         folder = analysis->AnalysisDir()] { RemoveEmptyFolder(files, folder); });
    out.Done(source.describe(*analysis),
             fmt::format("Created the analysis {} in {}.", name_, analysis->AnalysisDir()));
  }

  std::string name_;
};

class AnalysisShow : public ReadingCommand {
 public:
  explicit AnalysisShow(Arguments arguments) { arguments.Required("NAME", name_, kNameHelp); }

 private:
  void Run(Session& session, Output& out) override {
    const auto source = Analyses(session);
    const auto analysis = FindItem(source, name_);
    Record record = source.describe(*analysis);
    record.emplace_back("layer_file", analysis->LayerFile());
    record.emplace_back("comments", WithPlainLineEnds(analysis->Comments()));
    out.Fields(std::move(record));
  }

  std::string name_;
};

class AnalysisRename : public ChangingCommand {
 public:
  explicit AnalysisRename(Arguments arguments) {
    arguments.Required("NAME", name_, kNameHelp);
    arguments.Required("NEW", new_name_, "Its new name; its folder keeps the old one", RequireKey);
  }

 private:
  void Run(Session& session, Output& out) override {
    const auto source = Analyses(session);
    const auto analysis = FindItem(source, name_);
    const std::string old_name = analysis->Name();
    RequireFreeName(source, new_name_, analysis->AnalysisGUID());
    analysis->SetName(new_name_);
    RequireRenamed(*analysis, new_name_);
    out.Done(source.describe(*analysis),
             fmt::format("Renamed the analysis {} to {}.", old_name, analysis->Name()));
  }

  std::string name_;
  std::string new_name_;
};

class AnalysisDelete : public DeletingCommand {
 public:
  explicit AnalysisDelete(Arguments arguments) : DeletingCommand(arguments) {
    arguments.Required("NAME", name_, kNameHelp);
  }

 private:
  Question ToAsk(Session& session) override {
    const auto analysis = FindItem(Analyses(session), name_);
    return {fmt::format("This deletes the analysis {} and the folder {} with all that is in it.",
                        analysis->Name(), analysis->AnalysisDir()),
            Analyses(session).describe(*analysis)};
  }

  void Run(Session& session, Output& out) override {
    const auto source = Analyses(session);
    const auto analysis = FindItem(source, name_);
    const Record record = source.describe(*analysis);
    out.Done(record,
             DeleteWithFolder(session, {fmt::format("analysis {}", analysis->Name()),
                                        analysis->AnalysisGUID(), analysis->AnalysisDir(), [&] {
                                          return Delete(*AnalysisCollection(session), *analysis);
                                        }}));
  }

  // By what leads to this very analysis: others may share its identifier, or its name.
  static bool Delete(IKVAnalysisCollection& analyses, IKVAnalysis& analysis) {
    const std::string guid = analysis.AnalysisGUID();
    const std::string name = analysis.Name();
    const std::string folder = analysis.AnalysisDir();
    const auto found = analyses.GetAnalysisByGUID(guid);
    return found && found->AnalysisDir() == folder ? analyses.DeleteAnalysisByGUID(guid)
                                                   : analyses.DeleteAnalysis(name);
  }

  std::string name_;
};

class AnalysisLayer : public ProjectCommand {
 public:
  explicit AnalysisLayer(Arguments arguments) {
    arguments.Required("NAME", name_, kNameHelp);
    arguments.Optional("PATH", path_, "The new layer file; without it the path is shown",
                       RequireStorable);
    arguments.Flag("--edit", edit_, "Set it as a layer editor does");
  }

 private:
  [[nodiscard]] bool Changes() const override { return path_.has_value(); }

  void Run(Session& session, Output& out) override {
    const auto analysis = FindItem(Analyses(session), name_);
    if (path_ && edit_) {
      Required(Query<IKVLayerEdit>(analysis)).SetLayerFile(*path_);
    } else if (path_) {
      analysis->SetLayerFile(*path_);
    }
    out.Text({{"name", analysis->Name()},
              {"guid", analysis->AnalysisGUID()},
              {"layer_file", analysis->LayerFile()}},
             analysis->LayerFile());
  }

  std::string name_;
  std::optional<std::string> path_;
  bool edit_ = false;
};

}  // namespace

void AddAnalysisCommands(const CommandGroup& root) {
  const CommandGroup analysis = root.Group("analysis", "Analyses of the project");
  analysis.Add<AnalysisList>("list", "List the analyses",
                             "kvdm analysis list\nkvdm analysis list --json");
  analysis.Add<AnalysisCreate>("create", "Make an analysis with its folder",
                               "kvdm analysis create Sales");
  analysis.Add<AnalysisShow>("show", "Show one analysis", "kvdm analysis show Sales");
  analysis.Add<AnalysisRename>("rename", "Rename an analysis",
                               "kvdm analysis rename Sales \"Sales 2026\"");
  analysis.Add<AnalysisDelete>("delete", "Delete an analysis and its folder",
                               "kvdm analysis delete Sales\nkvdm analysis delete Sales --yes");
  AddCommentCommand<&Analyses>(analysis,
                               "kvdm analysis comment Sales \"Draft\"\n"
                               "kvdm analysis comment Sales - < notes.txt");
  analysis.Add<AnalysisLayer>(
      "layer", "Show or set the layer file",
      "kvdm analysis layer Sales\nkvdm analysis layer Sales 'D:\\Layers\\Sales.lyr'");
  analysis.Add<ItemSet<AnalysisItems>>("set", "Set other fields of an analysis",
                                       "kvdm analysis set Sales --created '1/31/2026 9:00:00 AM'");
  AddParamCommands<AnalysisItems>(analysis, "Sales");
  AddAnalysisProperties(analysis);
}

}  // namespace kvdm
