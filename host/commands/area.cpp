// kvdm area: the study areas, which all projects of a user share.
#include "host/commands/groups.h"
#include "host/commands/item_commands.h"
#include "host/deletion.h"
#include "host/kinds.h"
#include "util/names.h"

namespace kvdm {
namespace {

// A study area without a dataset answers with a message; to people it just has none.
std::string DatasetOf(IKVStudyArea& area, Output& out) {
  return out.Quietly([&] { return area.Dataset(); });
}

struct StudyAreas : CommandKind<StudyAreaKind> {
  static constexpr char kExample[] = "North";
  static constexpr char kNameHelp[] = "Its name, which names its folder too";
  static constexpr char kRenameHelp[] = "Its new name; its folder keeps the old one";
  static constexpr ArgumentCheck kNewName = &RequireNewAreaName;
  static constexpr ArgumentCheck kKey = &RequireAreaKey;

  static void TellMore(Session& session) { TellOfMissingArea(session); }

  static Record Details(const Ref& area, Session& session, Output& out) {
    return {{"layer_file", area->LayerFile()},
            {"dataset", DatasetOf(*area, out)},
            {"current", area->Name() == session.Component().CurrentStudyArea()},
            {"comments", WithPlainLineEnds(area->Comments())}};
  }

  static std::vector<SettableField<Item>> SettableFields() {
    return {{"--folder", "Another folder, which 'kvdm area delete' then deletes; nothing is moved",
             &SetFolder},
            {"--layer-file", "Another layer file, as a layer editor sets it", &SetEditedLayerFile},
            {"--guid", "Another identifier, as a layer editor sets it", &SetIdentifier}};
  }

  static Ref Create(Session& session, const std::string& name, Output& out) {
    RequireFreeName<StudyAreas>(All(session), name);
    bool complete = false;
    const std::string cause =
        out.CauseIn([&] { complete = Collection(session)->CreateStudyArea(name); });
    auto area = Made(session, name);
    session.UnlessSaved([&session, guid = area->GUID(), folder = area->StudyAreaDir()] {
      Collection(session)->DeleteStudyAreaByGUID(guid);
      RemoveEmptyFolder(*session.Component().GetServices().platform.files, folder);
    });
    if (complete) return area;
    throw Failure(ExitCode::kRefused,
                  fmt::format("There is no new study area {}, as its folder {} could not be "
                              "made{}.",
                              name, area->StudyAreaDir(), cause));
  }

  static std::string WhereItIs(const Ref& area) {
    return fmt::format(" in {}.", area->StudyAreaDir());
  }

  // The project may work in the study area by its old name.
  static void Renamed(Session& session, const std::string& old_name, const std::string& new_name) {
    if (session.Component().CurrentStudyArea() != old_name) return;
    session.Component().SetCurrentStudyArea(new_name);
  }

  static std::string Consequence(Session&, const Ref& area) {
    return fmt::format(" and the folder {} with all that is in it.", area->StudyAreaDir());
  }

  // By name, which closes the study area and removes its folder; by GUID, which looks for a folder
  // of that name among those of all study areas, only where the name means another one.
  static std::string Delete(Session& session, const Ref& area) {
    const auto areas = Collection(session);
    const std::string name = area->Name();
    const std::string guid = area->GUID();
    const auto namesake = areas->GetStudyArea(name);
    const bool by_name = namesake && namesake->GUID() == guid;
    const std::string above =
        by_name ? "" : session.Manager().WorkingDirectory() + sDefaultDirNames::kStudyAreas + "\\";
    return DeleteWithFolder(
        session, {fmt::format("study area {}", name), guid, above + area->StudyAreaDir(), [&] {
                    return by_name ? areas->DeleteStudyArea(name)
                                   : areas->DeleteStudyAreaByGUID(guid);
                  }});
  }

 private:
  // The component joins file names to the folder as it is.
  static void SetFolder(const Ref& area, const std::string& folder) {
    Required(Query<IKVStudyArea2>(area))
        .SetStudyAreaDir(folder.ends_with('\\') ? folder : folder + "\\");
  }
};

class AreaUse : public ChangingCommand {
 public:
  explicit AreaUse(Arguments arguments) {
    arguments.Optional("NAME", name_, "The study area to work in, by name or {GUID}");
    arguments.Flag("--none", none_, "Work in none");
  }

 private:
  void Run(Session& session, Output& out) override {
    if (none_ == name_.has_value()) {
      throw Failure(ExitCode::kUsage, "Give either a study area or --none.");
    }
    const std::string name = none_ ? "" : StudyAreaKind::Find(session, *name_)->Name();
    session.Component().SetCurrentStudyArea(name);
    out.Done({{"study_area", name}}, none_ ? "No study area is open now."
                                           : fmt::format("The study area {} is open now.", name));
  }

  std::optional<std::string> name_;
  bool none_ = false;
};

class AreaDataset : public ItemCommand<StudyAreaKind, ProjectCommand> {
 public:
  explicit AreaDataset(Arguments arguments) : ItemCommand(arguments) {
    arguments.Optional("VALUE", value_, "The dataset's new name; without it the name is shown",
                       RequireStorable);
  }

 private:
  [[nodiscard]] bool Changes() const override { return value_.has_value(); }

  void RunOn(const StudyAreaKind::Ref& area, Session&, Output& out) override {
    if (value_) area->SetDataset(*value_);
    const std::string dataset = DatasetOf(*area, out);
    out.Text({{"name", area->Name()}, {"guid", area->GUID()}, {"dataset", dataset}}, dataset);
  }

  std::optional<std::string> value_;
};

// A property that is not there and one that is empty are the same to the component.
class AreaPropGet : public ItemCommand<StudyAreaKind, ReadingCommand> {
 public:
  explicit AreaPropGet(Arguments arguments) : ItemCommand(arguments) {
    arguments.Required("KEY", key_, "The property", RequireKey);
  }

 private:
  void RunOn(const StudyAreaKind::Ref& area, Session&, Output& out) override {
    const Value value = Required(Query<IKVPropertySet>(area)).GetProperty(key_);
    const std::string text = value.IsNull() ? "" : ToText(value);
    out.Text({{"name", area->Name()}, {"key", key_}, {"value", text}}, text);
  }

  std::string key_;
};

class AreaPropSet : public ItemCommand<StudyAreaKind, ChangingCommand> {
 public:
  explicit AreaPropSet(Arguments arguments) : ItemCommand(arguments) {
    arguments.Required("KEY", key_, "The property", RequireKey);
    arguments.Required("VALUE", value_, "Its value", RequireStorable);
  }

 private:
  void RunOn(const StudyAreaKind::Ref& area, Session&, Output& out) override {
    if (!Required(Query<IKVPropertySet>(area)).SetProperty(key_, value_)) {
      throw Failure(ExitCode::kRefused, fmt::format("The property {} could not be set.", key_));
    }
    out.Done({{"name", area->Name()}, {"key", key_}, {"value", value_}},
             fmt::format("Set {} of the study area {}.", key_, area->Name()));
  }

  std::string key_;
  std::string value_;
};

}  // namespace

std::string MissingCurrentArea(Session& session) {
  const std::string name = session.Component().CurrentStudyArea();
  if (name.empty() || StudyAreaKind::Collection(session)->GetStudyArea(name)) return {};
  StudyAreaKind::RequireList(session);
  return fmt::format(
      "The project works in the study area {}, which is not in the list of study "
      "areas: it was deleted or renamed. Open another one with 'kvdm area use NAME', "
      "or none with 'kvdm area use --none'.",
      name);
}

void TellOfMissingArea(Session& session) {
  const std::string missing = MissingCurrentArea(session);
  if (!missing.empty()) Output::Tell("kvdm: " + missing);
}

void RequireCurrentArea(Session& session) {
  const std::string missing = MissingCurrentArea(session);
  if (!missing.empty()) throw Failure(ExitCode::kNotFound, missing);
}

void AddAreaCommands(const CommandGroup& root) {
  const CommandGroup group = root.Group("area", "Study areas, shared by all projects");
  AddListCommand<StudyAreas>(group);
  AddCreateCommand<StudyAreas>(group, " with its folder");
  AddShowCommand<StudyAreas>(group);
  AddRenameCommand<StudyAreas>(group);
  AddDeleteCommand<StudyAreas>(group, " and its folder");
  group.Add<AreaUse>("use", "Open a study area to work in",
                     "kvdm area use North\nkvdm area use --none");
  AddCommentCommand<StudyAreas>(group);
  group.Add<AreaDataset>("dataset", "Show or set the dataset's name",
                         "kvdm area dataset North\nkvdm area dataset North Census");
  AddSetCommand<StudyAreas>(group, "other fields", " --folder 'D:\\Data\\North\\'");
  const CommandGroup prop = group.Group("prop", "Free-form properties of a study area");
  prop.Add<AreaPropGet>("get", "Show a property; empty when there is none",
                        "kvdm area prop get North TYPE");
  prop.Add<AreaPropSet>("set", "Set a property", "kvdm area prop set North TYPE urban");
}

}  // namespace kvdm
