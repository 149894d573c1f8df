// kvdm analysis: the analyses of a project.
#include "host/commands/groups.h"
#include "host/commands/item_commands.h"
#include "host/commands/item_params.h"
#include "host/deletion.h"
#include "host/ownership.h"

namespace kvdm {
namespace {

struct Analyses : CommandKind<AnalysisKind> {
  static constexpr char kExample[] = "Sales";
  static constexpr char kNameHelp[] = "Its name, which names its folder too";
  static constexpr char kRenameHelp[] = "Its new name; its folder keeps the old one";

  static Record Details(const Ref& analysis, Session&, Output&) {
    return {{"layer_file", analysis->LayerFile()},
            {"comments", WithPlainLineEnds(analysis->Comments())}};
  }

  static std::vector<SettableField<Item>> SettableFields() {
    return {{"--created", "When it was made", &SetCreated},
            {"--guid", "Another identifier, as a layer editor sets it", &SetIdentifier}};
  }

  static Ref Create(Session& session, const std::string& name, Output& out) {
    bool created = false;
    const std::string cause =
        out.CauseIn([&] { created = Collection(session)->CreateAnalysis(name); });
    if (!created) {
      throw Failure(ExitCode::kRefused,
                    fmt::format("There is no new analysis {}, as its folder could not be made{}.",
                                name, cause));
    }
    auto analysis = Made(session, name);
    session.UnlessSaved([&files = *session.Component().GetServices().platform.files,
                         folder = analysis->AnalysisDir()] { RemoveEmptyFolder(files, folder); });
    return analysis;
  }

  static std::string WhereItIs(const Ref& analysis) {
    return fmt::format(" in {}.", analysis->AnalysisDir());
  }

  static std::string FolderOf(Session&, const Ref& analysis) { return analysis->AnalysisDir(); }
  static std::string Remark(Session&, const Ref&) { return ""; }

  static std::string Delete(Session& session, const Ref& analysis) {
    return DeleteWithFolder(session, {fmt::format("analysis {}", analysis->Name()),
                                      analysis->AnalysisGUID(), analysis->AnalysisDir(),
                                      [&] { return DeleteThis(*Collection(session), *analysis); }});
  }

 private:
  // By what leads to this very analysis: others may share its identifier, or its name.
  static bool DeleteThis(IKVAnalysisCollection& analyses, IKVAnalysis& analysis) {
    const std::string guid = analysis.AnalysisGUID();
    const std::string name = analysis.Name();
    const std::string folder = analysis.AnalysisDir();
    const auto found = analyses.GetAnalysisByGUID(guid);
    return found && found->AnalysisDir() == folder ? analyses.DeleteAnalysisByGUID(guid)
                                                   : analyses.DeleteAnalysis(name);
  }
};

class AnalysisCreate : public ItemCreate<Analyses> {
 public:
  explicit AnalysisCreate(Arguments arguments) : ItemCreate(arguments) {
    arguments.Flag("--duplicate", duplicate_, "Take a name that another analysis has");
    arguments.Flag("--no-area", no_area_, "Make it in the working directory, in no study area");
  }

 private:
  Analyses::Ref Create(Session& session, const std::string& name, Output& out) override {
    if (!duplicate_) RequireNewAnalysisName(session, name);
    if (!no_area_) {
      RequireCurrentArea(session);
      return Analyses::Create(session, name, out);
    }
    HostedComponent& component = session.Component();
    const std::string area = component.CurrentStudyArea();
    const std::string guid = component.CurrentStudyAreaGuid();
    component.SetCurrentStudyArea("", "");
    auto analysis = Analyses::Create(session, name, out);
    component.SetCurrentStudyArea(area, guid);
    return analysis;
  }

  static void RequireNewAnalysisName(Session& session, const std::string& name) {
    const auto names = NamesOf<Analyses>(session);
    if (std::find(names.begin(), names.end(), name) == names.end()) return;
    throw Failure(ExitCode::kConflict,
                  fmt::format("Another analysis is named {}, and each would be found by its GUID "
                              "alone. Choose another name, or add --duplicate.",
                              name));
  }

  bool duplicate_ = false;
  bool no_area_ = false;
};

class AnalysisLayer : public ItemCommand<AnalysisKind, ProjectCommand> {
 public:
  explicit AnalysisLayer(Arguments arguments) : ItemCommand(arguments) {
    arguments.Optional("PATH", path_, "The new layer file; without it the path is shown",
                       RequireStorable);
    arguments.Flag("--edit", edit_, "Set it as a layer editor does");
  }

 private:
  [[nodiscard]] bool Changes() const override { return path_.has_value(); }

  void RunOn(const AnalysisKind::Ref& analysis, Session&, Output& out) override {
    if (path_ && edit_) {
      Required(Query<IKVLayerEdit>(analysis)).SetLayerFile(FullPath(*path_));
    } else if (path_) {
      analysis->SetLayerFile(FullPath(*path_));
    }
    out.Text({{"name", analysis->Name()},
              {"guid", analysis->AnalysisGUID()},
              {"layer_file", analysis->LayerFile()}},
             analysis->LayerFile());
  }

  std::optional<std::string> path_;
  bool edit_ = false;
};

}  // namespace

void AddAnalysisCommands(const CommandGroup& root) {
  const CommandGroup group = root.Group("analysis", "Analyses of the project");
  AddListCommand<Analyses>(group);
  AddCreateCommand<Analyses, AnalysisCreate>(group, " with its folder");
  AddShowCommand<Analyses>(group);
  AddRenameCommand<Analyses>(group);
  AddDeleteCommand<Analyses>(group, " and its folder");
  AddCommentCommand<Analyses>(group);
  group.Add<AnalysisLayer>(
      "layer", "Show or set the layer file",
      "kvdm analysis layer Sales\nkvdm analysis layer Sales 'D:\\Layers\\Sales.lyr'");
  AddSetCommand<Analyses>(group, "other fields", " --created '1/31/2026 9:00:00 AM'");
  AddParamCommands<Analyses>(group);
  AddAnalysisProperties(group);
}

}  // namespace kvdm
