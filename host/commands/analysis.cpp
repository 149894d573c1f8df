// kvdm analysis: the analyses of a project.
#include <algorithm>

#include "host/commands/groups.h"
#include "host/commands/item_comment.h"
#include "host/sources.h"

namespace kvdm {
namespace {

constexpr char kNameHelp[] = "An analysis, by name or {GUID}";

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
    arguments.Required("NAME", name_, "Its name, which names its folder too; need not be unique");
  }

 private:
  void Run(Session& session, Output& out) override {
    RequireFolderName(name_);
    if (!AnalysisCollection(session)->CreateAnalysis(name_)) {
      throw Failure(ExitCode::kRefused,
                    fmt::format("The folder of the analysis {} could not be made, so there is no "
                                "new analysis.",
                                name_));
    }
    const auto source = Analyses(session);
    const auto analysis = ItemsNamed(source, name_).back();
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
    arguments.Required("NEW", new_name_, "Its new name; its folder keeps the old one");
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

class AnalysisDelete : public ChangingCommand {
 public:
  explicit AnalysisDelete(Arguments arguments) {
    arguments.Required("NAME", name_, kNameHelp);
    arguments.Flag("--yes", yes_, "Do not ask");
  }

 private:
  void Run(Session& session, Output& out) override {
    const auto source = Analyses(session);
    const auto analysis = FindItem(source, name_);
    const Record record = source.describe(*analysis);
    const std::string folder = analysis->AnalysisDir();
    const std::string name = analysis->Name();
    RequireConsent(yes_, fmt::format("This deletes the analysis {} and the folder {} with all that "
                                     "is in it.",
                                     name, folder));
    Delete(*AnalysisCollection(session), *analysis);
    const bool left = session.Component().GetServices().platform.files->FolderExists(folder);
    if (left) Output::Tell(fmt::format("kvdm: the folder {} is still there.", folder));
    out.Done(record, fmt::format("Deleted the analysis {}.", name));
  }

  // By what leads to this very analysis: others may share its identifier, or its name.
  static void Delete(IKVAnalysisCollection& analyses, IKVAnalysis& analysis) {
    const std::string guid = analysis.AnalysisGUID();
    const std::string name = analysis.Name();
    const std::string folder = analysis.AnalysisDir();
    const auto found = analyses.GetAnalysisByGUID(guid);
    const bool deleted = found && found->AnalysisDir() == folder
                             ? analyses.DeleteAnalysisByGUID(guid)
                             : analyses.DeleteAnalysis(name);
    if (!deleted) throw Failure(ExitCode::kRefused, "The component did not delete it.");
  }

  std::string name_;
  bool yes_ = false;
};

// The parameters' names; none when the component answers with no list.
std::vector<std::string> ParameterNames(IKVAnalysis& analysis) {
  std::vector<std::string> names;
  const auto list = analysis.ParametersList();
  if (!list) return names;
  for (const Value& name : *list) names.push_back(name.IsNull() ? "" : ToText(name));
  return names;
}

class ParamList : public ReadingCommand {
 public:
  explicit ParamList(Arguments arguments) { arguments.Required("NAME", name_, kNameHelp); }

 private:
  void Run(Session& session, Output& out) override {
    const auto analysis = FindItem(Analyses(session), name_);
    std::vector<Record> items;
    for (const std::string& key : ParameterNames(*analysis)) {
      items.push_back({{"key", key}, {"value", analysis->GetParameter(key)}});
    }
    out.Items(std::move(items), "The analysis has no parameters.");
  }

  std::string name_;
};

class ParamGet : public ReadingCommand {
 public:
  explicit ParamGet(Arguments arguments) {
    arguments.Required("NAME", name_, kNameHelp);
    arguments.Required("KEY", key_, "The parameter");
  }

 private:
  void Run(Session& session, Output& out) override {
    const auto analysis = FindItem(Analyses(session), name_);
    const auto names = ParameterNames(*analysis);
    if (std::find(names.begin(), names.end(), key_) == names.end()) {
      throw Failure(ExitCode::kNotFound,
                    fmt::format("The analysis {} has no parameter {}.", analysis->Name(), key_));
    }
    const std::string value = analysis->GetParameter(key_);
    out.Text({{"name", analysis->Name()}, {"key", key_}, {"value", value}}, value);
  }

  std::string name_;
  std::string key_;
};

class ParamSet : public ChangingCommand {
 public:
  explicit ParamSet(Arguments arguments) {
    arguments.Required("NAME", name_, kNameHelp);
    arguments.Required("KEY", key_, "The parameter");
    arguments.Required("VALUE", value_, "Its value");
  }

 private:
  void Run(Session& session, Output& out) override {
    const auto analysis = FindItem(Analyses(session), name_);
    if (!analysis->SetParameter(key_, value_)) {
      throw Failure(ExitCode::kRefused, fmt::format("The parameter {} could not be set.", key_));
    }
    out.Done({{"name", analysis->Name()}, {"key", key_}, {"value", value_}},
             fmt::format("Set {} of the analysis {}.", key_, analysis->Name()));
  }

  std::string name_;
  std::string key_;
  std::string value_;
};

class ParamClear : public ChangingCommand {
 public:
  explicit ParamClear(Arguments arguments) { arguments.Required("NAME", name_, kNameHelp); }

 private:
  void Run(Session& session, Output& out) override {
    const auto analysis = FindItem(Analyses(session), name_);
    const auto count = static_cast<std::int64_t>(ParameterNames(*analysis).size());
    if (!analysis->ClearParametersList()) {
      throw Failure(ExitCode::kRefused, "The parameters could not be removed.");
    }
    out.Done({{"name", analysis->Name()}, {"removed", count}},
             fmt::format("Removed {} parameters of the analysis {}.", count, analysis->Name()));
  }

  std::string name_;
};

class AnalysisLayer : public ProjectCommand {
 public:
  explicit AnalysisLayer(Arguments arguments) {
    arguments.Required("NAME", name_, kNameHelp);
    arguments.Optional("PATH", path_, "The new layer file; without it the path is shown");
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
  const CommandGroup param = analysis.Group("param", "Named parameters of an analysis");
  param.Add<ParamList>("list", "List the parameters", "kvdm analysis param list Sales");
  param.Add<ParamGet>("get", "Show one parameter", "kvdm analysis param get Sales radius");
  param.Add<ParamSet>("set", "Set a parameter", "kvdm analysis param set Sales radius 5");
  param.Add<ParamClear>("clear", "Remove all parameters", "kvdm analysis param clear Sales");
}

}  // namespace kvdm
