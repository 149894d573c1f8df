// kvdm area: the study areas, which all projects of a user share.
#include "host/commands/groups.h"
#include "host/commands/item_comment.h"
#include "host/commands/item_set.h"
#include "host/deletion.h"
#include "host/project_file.h"
#include "host/sources.h"
#include "util/names.h"

namespace kvdm {
namespace {

// A study area without a dataset answers with a message; to people it just has none.
std::string DatasetOf(IKVStudyArea& area, Output& out) {
  return out.Quietly([&] { return area.Dataset(); });
}

Record AreaRecord(IKVStudyArea& area, Session& session, Output& out) {
  return {{"name", area.Name()},
          {"guid", area.GUID()},
          {"folder", area.StudyAreaDir()},
          {"layer_file", area.LayerFile()},
          {"dataset", DatasetOf(area, out)},
          {"current", area.Name() == session.Component().CurrentStudyArea()},
          {"comments", WithPlainLineEnds(area.Comments())}};
}

// What the commands that all kinds of items have need of study areas.
struct AreaItems {
  using Item = IKVStudyArea;
  static constexpr char kWord[] = "study area";

  static std::shared_ptr<Item> Find(Session& session, const std::string& selector) {
    return FindItem(StudyAreas(session), selector);
  }

  static std::vector<SettableField<Item>> SettableFields() {
    return {{"--folder", "Another folder, which 'kvdm area delete' then deletes; nothing is moved",
             &SetFolder},
            {"--layer-file", "Another layer file, as a layer editor sets it", &SetEditedLayerFile},
            {"--guid", "Another identifier, as a layer editor sets it", &SetIdentifier}};
  }

  // The component joins file names to the folder as it is.
  static void SetFolder(const std::shared_ptr<Item>& area, const std::string& folder) {
    Required(Query<IKVStudyArea2>(area))
        .SetStudyAreaDir(folder.ends_with('\\') ? folder : folder + "\\");
  }
};

class AreaList : public ReadingCommand {
 public:
  explicit AreaList(Arguments) {}

 private:
  void Run(Session& session, Output& out) override {
    const auto source = StudyAreas(session);
    out.Items(Descriptions(source, AllItems(source)), "There are no study areas.");
    TellOfMissingArea(session);
  }
};

class AreaCreate : public ChangingCommand {
 public:
  explicit AreaCreate(Arguments arguments) {
    arguments.Required("NAME", name_, "Its name, which names its folder too", RequireNewAreaName);
  }

 private:
  void Run(Session& session, Output& out) override {
    RequireFreeName(StudyAreas(session), name_);
    const bool complete = StudyAreaCollection(session)->CreateStudyArea(name_);
    const auto area = NewItem(StudyAreas(session), name_);
    session.UnlessSaved([&session, guid = area->GUID(), folder = area->StudyAreaDir()] {
      StudyAreaCollection(session)->DeleteStudyAreaByGUID(guid);
      RemoveEmptyFolder(*session.Component().GetServices().platform.files, folder);
    });
    if (!complete) {
      throw Failure(ExitCode::kRefused,
                    fmt::format("The folder {} of the study area {} could not be made, so there is "
                                "no new study area.",
                                area->StudyAreaDir(), name_));
    }
    out.Done(StudyAreas(session).describe(*area),
             fmt::format("Created the study area {} in {}.", name_, area->StudyAreaDir()));
  }

  std::string name_;
};

class AreaShow : public ReadingCommand {
 public:
  explicit AreaShow(Arguments arguments) {
    arguments.Required("NAME", name_, "A study area, by name or {GUID}");
  }

 private:
  void Run(Session& session, Output& out) override {
    out.Fields(AreaRecord(*FindItem(StudyAreas(session), name_), session, out));
    TellOfMissingArea(session);
  }

  std::string name_;
};

class AreaRename : public ChangingCommand {
 public:
  explicit AreaRename(Arguments arguments) {
    arguments.Required("NAME", name_, "A study area, by name or {GUID}");
    arguments.Required("NEW", new_name_, "Its new name; its folder keeps the old one",
                       RequireAreaKey);
  }

 private:
  void Run(Session& session, Output& out) override {
    const auto source = StudyAreas(session);
    const auto area = FindItem(source, name_);
    const std::string old_name = area->Name();
    RequireFreeName(source, new_name_, area->GUID());
    area->SetName(new_name_);
    RequireRenamed(*area, new_name_);
    const bool is_current = session.Component().CurrentStudyArea() == old_name;
    if (is_current) session.Component().SetCurrentStudyArea(new_name_);
    Save(session, old_name, is_current);
    out.Done(source.describe(*area),
             fmt::format("Renamed the study area {} to {}.", old_name, area->Name()));
  }

  // The list, which all projects share, has the new name by now.
  void Save(Session& session, const std::string& old_name, bool is_current) const {
    try {
      session.Save();
    } catch (const Unconfirmed&) {
      throw;
    } catch (const Failure& failure) {
      if (session.Component().GetServices().registry->Refused()) throw;
      throw Failure(failure.code(),
                    fmt::format("{} The study area {} is named {} in the list, though.{}",
                                failure.what(), old_name, new_name_,
                                is_current ? " The project still works in the one of the old name: "
                                             "open the new one with 'kvdm area use'."
                                           : ""));
    }
  }

  std::string name_;
  std::string new_name_;
};

class AreaDelete : public DeletingCommand {
 public:
  explicit AreaDelete(Arguments arguments) : DeletingCommand(arguments) {
    arguments.Required("NAME", name_, "A study area, by name or {GUID}");
  }

 private:
  Question ToAsk(Session& session) override {
    const auto area = FindItem(StudyAreas(session), name_);
    return {fmt::format("This deletes the study area {} and the folder {} with all that is in it.",
                        area->Name(), area->StudyAreaDir()),
            StudyAreas(session).describe(*area)};
  }

  void Run(Session& session, Output& out) override {
    const auto area = FindItem(StudyAreas(session), name_);
    const Record record = StudyAreas(session).describe(*area);
    out.Done(record, Delete(session, *area));
  }

  // By name, which closes the study area and removes its folder; by GUID, which looks for a folder
  // of that name among those of all study areas, only where the name means another one.
  static std::string Delete(Session& session, IKVStudyArea& area) {
    const auto areas = StudyAreaCollection(session);
    const std::string name = area.Name();
    const std::string guid = area.GUID();
    const auto namesake = areas->GetStudyArea(name);
    const bool by_name = namesake && namesake->GUID() == guid;
    const std::string above =
        by_name ? "" : session.Manager().WorkingDirectory() + sDefaultDirNames::kStudyAreas + "\\";
    bool deleted = false;
    try {
      return DeleteWithFolder(
          session, {fmt::format("study area {}", name), guid, above + area.StudyAreaDir(), [&] {
                      deleted = by_name ? areas->DeleteStudyArea(name)
                                        : areas->DeleteStudyAreaByGUID(guid);
                      return deleted;
                    }});
    } catch (const Failure& failure) {
      if (!deleted || session.Component().GetServices().registry->Refused()) throw;
      throw Failure(failure.code(), fmt::format("{} The study area {} is no longer listed, though; "
                                                "its folder stays.",
                                                failure.what(), name));
    }
  }

  std::string name_;
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
    const std::string name = none_ ? "" : FindItem(StudyAreas(session), *name_)->Name();
    session.Component().SetCurrentStudyArea(name);
    out.Done({{"study_area", name}}, none_ ? "No study area is open now."
                                           : fmt::format("The study area {} is open now.", name));
  }

  std::optional<std::string> name_;
  bool none_ = false;
};

class AreaDataset : public ProjectCommand {
 public:
  explicit AreaDataset(Arguments arguments) {
    arguments.Required("NAME", name_, "A study area, by name or {GUID}");
    arguments.Optional("VALUE", value_, "The dataset's new name; without it the name is shown",
                       RequireStorable);
  }

 private:
  [[nodiscard]] bool Changes() const override { return value_.has_value(); }

  void Run(Session& session, Output& out) override {
    const auto area = FindItem(StudyAreas(session), name_);
    if (value_) area->SetDataset(*value_);
    const std::string dataset = DatasetOf(*area, out);
    out.Text({{"name", area->Name()}, {"guid", area->GUID()}, {"dataset", dataset}}, dataset);
  }

  std::string name_;
  std::optional<std::string> value_;
};

// A property that is not there and one that is empty are the same to the component.
class AreaPropGet : public ReadingCommand {
 public:
  explicit AreaPropGet(Arguments arguments) {
    arguments.Required("NAME", name_, "A study area, by name or {GUID}");
    arguments.Required("KEY", key_, "The property", RequireKey);
  }

 private:
  void Run(Session& session, Output& out) override {
    const auto area = FindItem(StudyAreas(session), name_);
    const Value value = Required(Query<IKVPropertySet>(area)).GetProperty(key_);
    const std::string text = value.IsNull() ? "" : ToText(value);
    out.Text({{"name", area->Name()}, {"key", key_}, {"value", text}}, text);
  }

  std::string name_;
  std::string key_;
};

class AreaPropSet : public ChangingCommand {
 public:
  explicit AreaPropSet(Arguments arguments) {
    arguments.Required("NAME", name_, "A study area, by name or {GUID}");
    arguments.Required("KEY", key_, "The property", RequireKey);
    arguments.Required("VALUE", value_, "Its value", RequireStorable);
  }

 private:
  void Run(Session& session, Output& out) override {
    const auto area = FindItem(StudyAreas(session), name_);
    if (!Required(Query<IKVPropertySet>(area)).SetProperty(key_, value_)) {
      throw Failure(ExitCode::kRefused, fmt::format("The property {} could not be set.", key_));
    }
    out.Done({{"name", area->Name()}, {"key", key_}, {"value", value_}},
             fmt::format("Set {} of the study area {}.", key_, area->Name()));
  }

  std::string name_;
  std::string key_;
  std::string value_;
};

}  // namespace

void AddAreaCommands(const CommandGroup& root) {
  const CommandGroup area = root.Group("area", "Study areas, shared by all projects");
  area.Add<AreaList>("list", "List the study areas", "kvdm area list\nkvdm area list --json");
  area.Add<AreaCreate>("create", "Make a study area with its folder", "kvdm area create North");
  area.Add<AreaShow>("show", "Show one study area", "kvdm area show North");
  area.Add<AreaRename>("rename", "Rename a study area", "kvdm area rename North \"North side\"");
  area.Add<AreaDelete>("delete", "Delete a study area and its folder",
                       "kvdm area delete North\nkvdm area delete North --yes");
  area.Add<AreaUse>("use", "Open a study area to work in",
                    "kvdm area use North\nkvdm area use --none");
  AddCommentCommand<&StudyAreas>(area,
                                 "kvdm area comment North \"Checked in May\"\n"
                                 "kvdm area comment North - < notes.txt");
  area.Add<AreaDataset>("dataset", "Show or set the dataset's name",
                        "kvdm area dataset North\nkvdm area dataset North Census");
  area.Add<ItemSet<AreaItems>>("set", "Set other fields of a study area",
                               "kvdm area set North --folder 'D:\\Data\\North\\'");
  const CommandGroup prop = area.Group("prop", "Free-form properties of a study area");
  prop.Add<AreaPropGet>("get", "Show a property; empty when there is none",
                        "kvdm area prop get North TYPE");
  prop.Add<AreaPropSet>("set", "Set a property", "kvdm area prop set North TYPE urban");
}

}  // namespace kvdm
