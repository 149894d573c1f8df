// The commands that kinds of items have in common, each written once: list, create, show, rename,
// delete, set, comment and dir. The kind given is one that also has what its commands need; kinds
// with named parameters have those of host/commands/item_params.h, too.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/arguments.h"
#include "host/items.h"
#include "host/planning.h"

namespace kvdm {

// What most kinds have in common in these commands. A kind hides what is different for it.
template <class Kind>
struct CommandKind : Kind {
  using Ref = typename Kind::Ref;
  static constexpr ArgumentCheck kNewName = &RequireNewName;  // of what is created
  static constexpr ArgumentCheck kKey = &RequireKey;          // of what is renamed
  static constexpr bool kNamesFile = true;  // Whether a folder or file gets the name of a new one

  // Tells people what else there is to know when items are shown.
  static void TellMore(Session&) {}
  // The items among which the name of `item` should be unique.
  static std::vector<Ref> Peers(Session& session, const Ref&) { return Kind::All(session); }
  // Does what else is to be done when an item has a new name.
  static void Renamed(Session&, const std::string& /*from*/, const std::string& /*to*/) {}
};

inline constexpr char kForceHelp[] =
    "Take a name that some systems can't have, or that differs in letter case only";

// "a store layer", "an analysis"
[[nodiscard]] inline std::string WithArticle(std::string_view word) {
  return fmt::format("{} {}", word.starts_with('a') ? "an" : "a", word);
}

// A command line for the examples of a command: `rest` follows the name of an item.
template <class Kind>
[[nodiscard]] std::string ExampleOf(std::string_view command, std::string_view rest = "") {
  return fmt::format("kvdm {} {} {}{}", Kind::kCommand, command, Kind::kExample, rest);
}

// A command about one item, which people name.
template <class Kind, class Command>
class ItemCommand : public Command {
 public:
  explicit ItemCommand(Arguments arguments) {
    arguments.Required("NAME", name_, SelectorHelp(Kind::kWord));
  }

  [[nodiscard]] bool SharesSession() const final { return true; }

 private:
  virtual void RunOn(const typename Kind::Ref& item, Session& session, Output& out) = 0;
  [[nodiscard]] bool ChangesRegistry() const final { return Kind::kInRegistry; }
  void Run(Session& session, Output& out) override {
    const auto item = Kind::Find(session, name_);
    const bool changes = static_cast<const ProjectCommand&>(*this).Changes();
    if (changes) Kind::RequireChangeable(session, item);
    RunOn(item, session, out);
  }

  std::string name_;
};

template <class Kind>
class ItemList : public ReadingCommand {
 public:
  explicit ItemList(Arguments) {}
  [[nodiscard]] bool SharesSession() const final { return true; }

 private:
  void Run(Session& session, Output& out) override {
    const std::size_t shown = out.Messages().size();
    auto rows = RowsOf<Kind>(Kind::All(session));
    if (out.Messages().size() != shown) return;  // and the command fails with that message
    out.Items(std::move(rows), fmt::format("There are no {}.", Kind::kPlural));
    Kind::TellMore(session);
  }
};

template <class Kind>
void AddListCommand(const CommandGroup& group) {
  group.Add<ItemList<Kind>>("list", fmt::format("List the {}", Kind::kPlural),
                            fmt::format("kvdm {0} list\nkvdm {0} list --json", Kind::kCommand));
}

// A kind has `kNameHelp`; `Create(session, name, out)`, which answers the new item; and
// `WhereItIs`, the end of a sentence that names it.
template <class Kind>
class ItemCreate : public ChangingCommand {
 public:
  explicit ItemCreate(Arguments arguments) {
    arguments.Required("NAME", name_, Kind::kNameHelp, Kind::kNewName);
    if (Kind::kNamesFile) arguments.Flag("--force", force_, kForceHelp);
  }
  [[nodiscard]] bool SharesSession() const final { return true; }

 private:
  [[nodiscard]] bool ChangesRegistry() const final { return Kind::kInRegistry; }
  virtual typename Kind::Ref Create(Session& session, const std::string& name, Output& out) {
    return Kind::Create(session, name, out);
  }

  void Run(Session& session, Output& out) override {
    if (Kind::kNamesFile && !force_) RequirePortable<Kind>(session, name_);
    const auto item = Create(session, name_, out);
    out.Done(RowOf<Kind>(item),
             fmt::format("Created the {} {}{}", Kind::kWord, name_, Kind::WhereItIs(item)));
  }

  std::string name_;
  bool force_ = false;
};

template <class Kind, class Create = ItemCreate<Kind>>
void AddCreateCommand(const CommandGroup& group, std::string_view with = "") {
  group.Add<Create>("create", fmt::format("Make {}{}", WithArticle(Kind::kWord), with),
                    ExampleOf<Kind>("create"));
}

// A kind has `Details(item, session, out)`, the fields that follow those in lists.
template <class Kind>
class ItemShow : public ItemCommand<Kind, ReadingCommand> {
 public:
  using ItemCommand<Kind, ReadingCommand>::ItemCommand;

 private:
  void RunOn(const typename Kind::Ref& item, Session& session, Output& out) override {
    Record record = RowOf<Kind>(item);
    for (auto& field : Kind::Details(item, session, out)) record.push_back(std::move(field));
    out.Fields(std::move(record));
    Kind::TellMore(session);
  }
};

template <class Kind>
void AddShowCommand(const CommandGroup& group) {
  group.Add<ItemShow<Kind>>("show", fmt::format("Show one {}", Kind::kWord),
                            ExampleOf<Kind>("show"));
}

// A kind has `kRenameHelp`.
template <class Kind>
class ItemRename : public ItemCommand<Kind, ChangingCommand> {
 public:
  explicit ItemRename(Arguments arguments) : ItemCommand<Kind, ChangingCommand>(arguments) {
    arguments.Required("NEW", new_name_, Kind::kRenameHelp, Kind::kKey);
    arguments.Flag("--force", force_, kForceHelp);
  }

 private:
  void RunOn(const typename Kind::Ref& item, Session& session, Output& out) override {
    const std::string old_name = item->Name();
    RequireFreeName<Kind>(Kind::Peers(session, item), new_name_, Kind::GuidOf(item));
    if (!force_) RequirePortable<Kind>(session, new_name_, old_name);
    item->SetName(new_name_);
    if (item->Name() != new_name_) {
      throw Failure(ExitCode::kRefused,
                    fmt::format("The component kept the name {}.", item->Name()));
    }
    Kind::Renamed(session, old_name, new_name_);
    out.Done(RowOf<Kind>(item),
             fmt::format("Renamed the {} {} to {}.", Kind::kWord, old_name, new_name_));
  }

  std::string new_name_;
  bool force_ = false;
};

template <class Kind>
void AddRenameCommand(const CommandGroup& group) {
  group.Add<ItemRename<Kind>>("rename", fmt::format("Rename {}", WithArticle(Kind::kWord)),
                              ExampleOf<Kind>("rename", " \"New name\""));
}

// A kind has `FolderOf(session, item)`, the folder that goes with an item, "" for none;
// `Remark(session, item)`, sentences about what else becomes of it; and `Delete(session, item)`,
// which answers what it did in sentences.
template <class Kind>
class ItemDelete : public DeletingCommand {
 public:
  explicit ItemDelete(Arguments arguments) : DeletingCommand(arguments) {
    arguments.Required("NAME", name_, SelectorHelp(Kind::kWord));
  }

 protected:
  virtual typename Kind::Ref Found(Session& session, const std::string& name) {
    return Kind::Find(session, name);
  }
  virtual std::string FolderOf(Session& session, const typename Kind::Ref& item) {
    return Kind::FolderOf(session, item);
  }
  virtual std::string Remark(Session& session, const typename Kind::Ref& item) {
    return Kind::Remark(session, item);
  }
  virtual void Delete(Session& session, const typename Kind::Ref& item, Output& out) {
    const Record row = RowOf<Kind>(item);
    out.Done(row, Kind::Delete(session, item));
  }

  Question ToAsk(Session& session) override {
    const auto item = Find(session);
    const DeletionPlan plan = PlanOf(session, item);
    RequireAllowed(plan, session);
    const std::string remark = Remark(session, item);
    return {remark + (remark.empty() ? "" : " ") + QuestionOf(plan), RowOf<Kind>(item)};
  }

 private:
  [[nodiscard]] bool ChangesRegistry() const final { return Kind::kInRegistry; }
  typename Kind::Ref Find(Session& session) {
    auto item = Found(session, name_);
    Kind::RequireChangeable(session, item);
    return item;
  }

  DeletionPlan PlanOf(Session& session, const typename Kind::Ref& item) {
    return PlanFor(session,
                   {Kind::kWord, Kind::NameOf(item), Kind::GuidOf(item), FolderOf(session, item)});
  }

  void Run(Session& session, Output& out) override {
    const auto item = Find(session);
    const DeletionPlan plan = PlanOf(session, item);
    if (IsDryRun()) return ShowPlan(plan, out);
    RequireAllowed(plan, session);
    Delete(session, item, out);
  }

  std::string name_;
};

template <class Kind, class Delete = ItemDelete<Kind>>
void AddDeleteCommand(const CommandGroup& group, std::string_view with = "") {
  group.Add<Delete>("delete", fmt::format("Delete {}{}", WithArticle(Kind::kWord), with),
                    ExampleOf<Kind>("delete") + "\n" + ExampleOf<Kind>("delete", " --yes"));
}

// A field that people can set. Errors of `set` end the command.
template <class Item>
struct SettableField {
  const char* option;  // "--name-field"
  const char* help;
  void (*set)(Session& session, const std::shared_ptr<Item>& item, const std::string& text);
};

// A setter of an item as `SettableField::set`.
//
//   {"--id-field", "...", &SetText<&IKVStoreLayer::SetIDField>}
template <auto Setter, class Item>
void SetText(Session&, const std::shared_ptr<Item>& item, const std::string& text) {
  (item.get()->*Setter)(text);
}

// Gives an item another identifier, as a layer editor does. Failure kUsage for what is none.
template <class Item>
void SetIdentifier(Session&, const std::shared_ptr<Item>& item, const std::string& guid) {
  RequireGuid(guid);
  Required(Query<IKVLayerEdit>(item)).SetGUID(guid);
}

// Gives an item another layer file; a relative path is one below the current folder.
template <auto Setter, class Item>
void SetFile(Session&, const std::shared_ptr<Item>& item, const std::string& path) {
  (item.get()->*Setter)(FullPath(path));
}

// The same, as a layer editor does.
template <class Item>
void SetEditedLayerFile(Session&, const std::shared_ptr<Item>& item, const std::string& path) {
  Required(Query<IKVLayerEdit>(item)).SetLayerFile(FullPath(path));
}

// Says when an item was made; a date of ISO 8601 is taken, too. Failure kUsage for what is no date.
template <class Item>
void SetCreated(Session&, const std::shared_ptr<Item>& item, const std::string& time) {
  item->SetCreationTime(TimeArgument(time));
}

// A kind has its `SettableFields()`, each an option.
template <class Kind>
class ItemSet : public ItemCommand<Kind, ChangingCommand> {
 public:
  explicit ItemSet(Arguments arguments)
      : ItemCommand<Kind, ChangingCommand>(arguments),
        fields_(Kind::SettableFields()),
        values_(fields_.size()) {
    for (std::size_t i = 0; i < fields_.size(); ++i) {
      arguments.Optional(fields_[i].option, values_[i], fields_[i].help, RequireStorable);
    }
  }

 private:
  void RunOn(const typename Kind::Ref& item, Session& session, Output& out) override {
    Record record = {{"name", item->Name()}};
    for (std::size_t i = 0; i < fields_.size(); ++i) {
      if (!values_[i]) continue;
      fields_[i].set(session, item, *values_[i]);
      record.emplace_back(FieldName(fields_[i].option), *values_[i]);
    }
    if (record.size() == 1) {
      throw Failure(ExitCode::kUsage, "Nothing to set was given. '--help' shows what can be set.");
    }
    out.Done(std::move(record), fmt::format("Changed the {} {}.", Kind::kWord, item->Name()));
  }

  // "--name-field" -> "name_field"
  static std::string FieldName(std::string_view option) {
    std::string name(option.substr(2));
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
  }

  std::vector<SettableField<typename Kind::Item>> fields_;
  std::vector<std::optional<std::string>> values_;
};

// `fields` names the fields, "fields" or "other fields", and `rest` sets some in the example.
template <class Kind>
void AddSetCommand(const CommandGroup& group, std::string_view fields, std::string_view rest) {
  group.Add<ItemSet<Kind>>("set", fmt::format("Set {} of {}", fields, WithArticle(Kind::kWord)),
                           ExampleOf<Kind>("set", rest));
}

// Shows or sets the comments; they are lines, ended by LF.
template <class Kind>
class ItemComment : public ItemCommand<Kind, ProjectCommand> {
 public:
  explicit ItemComment(Arguments arguments) : ItemCommand<Kind, ProjectCommand>(arguments) {
    arguments.Optional("TEXT", text_, "New comments, or - to read them from standard input",
                       RequireStorable);
    arguments.Flag("--clear", clear_, "Remove the comments");
  }
  [[nodiscard]] bool KeepsNames() const override { return true; }

 private:
  [[nodiscard]] bool Changes() const override { return clear_ || text_; }

  void RunOn(const typename Kind::Ref& item, Session&, Output& out) override {
    if (clear_ && text_) throw Failure(ExitCode::kUsage, "Give either a text or --clear.");
    if (clear_) item->SetComments("");
    const std::string wanted = text_ ? TextArgument(*text_) : "";
    if (text_) item->SetComments(wanted);
    const std::string comments = WithPlainLineEnds(item->Comments());
    if (text_ && comments != wanted) {
      throw Failure(ExitCode::kRefused,
                    "The component did not take over the comments: they are too "
                    "long. Nothing was changed.");
    }
    out.Text({{"name", item->Name()}, {"guid", Kind::GuidOf(item)}, {"comments", comments}},
             comments);
  }

  std::optional<std::string> text_;
  bool clear_ = false;
};

template <class Kind>
void AddCommentCommand(const CommandGroup& group) {
  group.Add<ItemComment<Kind>>("comment", "Show or set the comments",
                               ExampleOf<Kind>("comment", " \"Checked in May\"") + "\n" +
                                   ExampleOf<Kind>("comment", " - < notes.txt"));
}

// Shows a folder of the component, with a separator at its end as items have theirs. The component
// makes some when it is asked for them: those are shown by a changing command.
template <auto Folder, class ShowingCommand>
class FolderShow : public ShowingCommand {
 public:
  explicit FolderShow(Arguments) {}

 private:
  void Run(Session& session, Output& out) override {
    const std::string folder = WithSeparator(Folder(session));
    out.Text({{"folder", folder}}, folder);
  }
};

// A kind has `Folder(session)`, that of the files of all its items.
template <class Kind, class ShowingCommand = ReadingCommand>
void AddFolderCommand(const CommandGroup& group, std::string_view of) {
  group.Add<FolderShow<&Kind::Folder, ShowingCommand>>(
      "dir", fmt::format("Show the folder of {}", of), fmt::format("kvdm {} dir", Kind::kCommand));
}

}  // namespace kvdm
