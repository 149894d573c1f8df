// kvdm area: the study areas, which all projects of a user share.
#include "host/commands/groups.h"
#include "host/commands/item_commands.h"
#include "host/deletion.h"
#include "host/ownership.h"
#include "safety/adopt.h"
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

  static void TellMore(Session& session) { TellOfCurrentArea(session); }

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
            {"--guid", "Another identifier, as a layer editor sets it", &SetOwnIdentifier}};
  }

  static Ref Create(Session& session, const std::string& name, Output& out) {
    RequireFreeName<StudyAreas>(All(session), name);
    RequireNoLostArea(session, name);
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
    HostedComponent& component = session.Component();
    if (component.CurrentStudyArea() != old_name) return;
    component.SetCurrentStudyArea(new_name, component.CurrentStudyAreaGuid());
  }

  static std::string FolderOf(Session& session, const Ref& area) {
    return FolderAbove(session, area) + area->StudyAreaDir();
  }
  static std::string Remark(Session&, const Ref&) { return ""; }

  // By name, which closes the study area and removes its folder; by GUID, which looks for a folder
  // of that name among those of all study areas, only where the name means another one.
  static std::string Delete(Session& session, const Ref& area) {
    const auto areas = Collection(session);
    const std::string name = area->Name();
    const std::string guid = area->GUID();
    const bool by_name = IsFoundByName(session, area);
    return DeleteWithFolder(
        session, {fmt::format("study area {}", name), guid, FolderOf(session, area), [&] {
                    return by_name ? areas->DeleteStudyArea(name)
                                   : areas->DeleteStudyAreaByGUID(guid);
                  }});
  }

 private:
  // The component would make a folder of another name beside that of a study area that is no longer
  // listed. Failure kConflict.
  static void RequireNoLostArea(Session& session, const std::string& name) {
    const Platform& platform = session.Component().GetServices().platform;
    const std::string folder =
        session.Manager().WorkingDirectory() + sDefaultDirNames::kStudyAreas + "\\" + name;
    const auto areas = All(session);
    const bool is_listed = std::ranges::any_of(areas, [&](const Ref& area) {
      return SamePlaceIn(platform)(area->StudyAreaDir(), folder);
    });
    if (is_listed || !platform.files->FolderExists(folder) ||
        !LooksLikeStudyArea(platform, folder)) {
      return;
    }
    throw Failure(ExitCode::kConflict,
                  fmt::format("The folder {} is that of a study area that is no longer listed. "
                              "'kvdm adopt --dry-run' shows it and 'kvdm adopt' brings it back; or "
                              "choose another name.",
                              folder));
  }

  static bool IsFoundByName(Session& session, const Ref& area) {
    const auto namesake = Collection(session)->GetStudyArea(area->Name());
    return namesake && namesake->GUID() == area->GUID();
  }

  // Where the component looks for the folder of a study area that it deletes.
  static std::string FolderAbove(Session& session, const Ref& area) {
    if (IsFoundByName(session, area)) return "";
    return session.Manager().WorkingDirectory() + sDefaultDirNames::kStudyAreas + "\\";
  }

  // The project goes on working in the study area that it has open.
  static void SetOwnIdentifier(Session& session, const Ref& area, const std::string& guid) {
    HostedComponent& component = session.Component();
    const bool is_open = component.CurrentStudyArea() == area->Name() &&
                         component.CurrentStudyAreaGuid() == area->GUID();
    SetIdentifier(session, area, guid);
    if (is_open) component.SetCurrentStudyArea(area->Name(), guid);
  }

  // The component joins file names to the folder as it is.
  static void SetFolder(Session& session, const Ref& area, const std::string& folder) {
    const std::string wanted = WithSeparator(FullPath(folder));
    if (!session.GetAllowed().outside && !DirectoryOf(session).Holds(wanted)) {
      throw Failure(ExitCode::kUnsafe,
                    fmt::format("The folder {} is not in the project's working directory {}: the "
                                "study area would be no project's own. Add --outside to set it all "
                                "the same.",
                                wanted, WithSeparator(DirectoryOf(session).Path())));
    }
    Required(Query<IKVStudyArea2>(area)).SetStudyAreaDir(wanted);
  }
};

// The project's own ones; with --all those of other working directories too.
class AreaList : public ReadingCommand {
 public:
  explicit AreaList(Arguments arguments) {
    arguments.Flag("--all", all_, "Those of other projects too, with their working directories");
  }

 private:
  void Run(Session& session, Output& out) override {
    const std::size_t shown = out.Messages().size();
    const WorkingDirectory directory = DirectoryOf(session);
    std::vector<Record> rows;
    std::size_t others = 0;
    for (const auto& area : StudyAreas::All(session)) {
      const bool is_own = directory.Holds(area->StudyAreaDir());
      others += is_own ? 0 : 1;
      if (!is_own && !all_) continue;
      rows.push_back(RowOf<StudyAreas>(area));
      if (!all_) continue;
      const std::string theirs = WorkingDirectoryOf(area->StudyAreaDir());
      const std::string owner = is_own ? WithSeparator(directory.Path()) : theirs;
      rows.back().emplace_back("working_directory", owner.empty() ? Field() : Field(owner));
    }
    if (out.Messages().size() != shown) return;  // and the command fails with that message
    out.Items(std::move(rows), "There are no study areas.");
    if (!all_ && others > 0) {
      Output::Tell(
          fmt::format("kvdm: {} of other projects; 'kvdm area list --all' shows them.", others));
    }
    TellOfCurrentArea(session);
  }

  bool all_ = false;
};

class AreaUse : public ChangingCommand {
 public:
  explicit AreaUse(Arguments arguments) {
    arguments.Optional("NAME", name_, "The study area to work in, by name or {GUID}");
    arguments.Flag("--none", none_, "Work in none");
  }

  [[nodiscard]] bool SharesSession() const override { return true; }

 private:
  void Run(Session& session, Output& out) override {
    if (none_ == name_.has_value()) {
      throw Failure(ExitCode::kUsage, "Give either a study area or --none.");
    }
    const auto area = none_ ? nullptr : StudyAreaKind::Find(session, *name_);
    if (area) StudyAreaKind::RequireChangeable(session, area);
    const std::string name = area ? area->Name() : "";
    session.Component().SetCurrentStudyArea(name, area ? area->GUID() : "");
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

void AddAreaCommands(const CommandGroup& root) {
  const CommandGroup group = root.Group("area", "Study areas of the project");
  group.Add<AreaList>("list", "List the study areas",
                      "kvdm area list\nkvdm area list --all --json");
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
