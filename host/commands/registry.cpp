// kvdm registry: the study areas and layers that a project registers directly in its metadata.
#include <fmt/format.h>

#include <algorithm>
#include <functional>

#include "host/commands/groups.h"
#include "host/deletion.h"
#include "host/items.h"
#include "host/registered_items.h"

namespace kvdm {
namespace {

template <class Item>
Record Described(Item& item) {
  if constexpr (requires { item.StudyAreaDir(); }) {
    return {{"name", item.Name()}, {"guid", item.GUID()}, {"folder", item.StudyAreaDir()}};
  } else {
    return {{"name", item.Name()}, {"guid", item.GUID()}, {"created", item.CreationTime()}};
  }
}

// The item that `selector` means: that with this "{GUID}", else the first of that name. Failure
// kNotFound when there is none.
template <class Kind>
std::shared_ptr<typename Kind::Item> FindRegistered(Session& session, const std::string& selector) {
  AreaRegistry& registry = RegistryOf(session);
  if (IsGuid(selector) && std::invoke(Kind::kExistsByGuid, registry, selector)) {
    return std::invoke(Kind::kGetByGuid, registry, selector);
  }
  if (std::invoke(Kind::kExists, registry, selector)) {
    return std::invoke(Kind::kGet, registry, selector);
  }
  throw Failure(ExitCode::kNotFound,
                fmt::format("There is no {} {}. 'kvdm registry {} list' shows what there is.",
                            Kind::kWord, selector, Kind::kCommand));
}

bool Contains(const NameList& names, const std::string& name) {
  return std::any_of(names.begin(), names.end(),
                     [&](const Value& value) { return !value.IsNull() && ToText(value) == name; });
}

template <class Kind>
class RegistryList : public ReadingCommand {
 public:
  explicit RegistryList(Arguments) {}

 private:
  // The list of names leaves out what is not for people.
  void Run(Session& session, Output& out) override {
    AreaRegistry& registry = RegistryOf(session);
    const std::size_t shown = out.Messages().size();
    const NameListRef names = std::invoke(Kind::kNames, registry);
    if (out.Messages().size() > shown) return;  // and the command fails with that message
    std::vector<Record> items;
    const NameListRef guids = std::invoke(Kind::kGuids, registry);
    for (const Value& guid : *guids) {
      const auto item =
          guid.IsNull() ? nullptr : std::invoke(Kind::kGetByGuid, registry, ToText(guid));
      if (item && Contains(*names, item->Name())) items.push_back(Described(*item));
    }
    out.Items(std::move(items), fmt::format("There are no {}s.", Kind::kWord));
  }
};

template <class Kind>
class RegistryCreate : public ChangingCommand {
 public:
  explicit RegistryCreate(Arguments arguments) {
    arguments.Required("NAME", name_, "Its name", RequireKey);
  }

 private:
  void Run(Session& session, Output& out) override {
    AreaRegistry& registry = RegistryOf(session);
    if (std::invoke(Kind::kExists, registry, name_)) {
      throw Failure(ExitCode::kConflict, fmt::format("Another {} is named {}. Choose another name.",
                                                     Kind::kWord, name_));
    }
    if (!std::invoke(Kind::kCreate, registry, name_)) {
      throw Failure(ExitCode::kRefused,
                    fmt::format("The component did not make the {} {}.", Kind::kWord, name_));
    }
    const auto item = std::invoke(Kind::kGet, registry, name_);
    out.Done(Described(Required(item)), fmt::format("Created the {} {}.", Kind::kWord, name_));
  }

  std::string name_;
};

template <class Kind>
class RegistryShow : public ReadingCommand {
 public:
  explicit RegistryShow(Arguments arguments) {
    arguments.Required("NAME", name_, SelectorHelp(Kind::kWord));
  }

 private:
  void Run(Session& session, Output& out) override {
    out.Fields(Described(Required(FindRegistered<Kind>(session, name_))));
  }

  std::string name_;
};

template <class Kind>
class RegistryDelete : public DeletingCommand {
 public:
  explicit RegistryDelete(Arguments arguments) : DeletingCommand(arguments) {
    arguments.Required("NAME", name_, SelectorHelp(Kind::kWord));
  }

 private:
  Question ToAsk(Session& session) override {
    const auto item = FindRegistered<Kind>(session, name_);
    return {fmt::format("This deletes the {} {}. {} {}.", Kind::kWord, Required(item).Name(),
                        Kind::kHasFolder ? "The component deletes what it can of"
                                         : "It leaves the files in",
                        FolderOf(session, *item)),
            Described(*item)};
  }

  void Run(Session& session, Output& out) override {
    AreaRegistry& registry = RegistryOf(session);
    const auto item = FindRegistered<Kind>(session, name_);
    const Record record = Described(Required(item));
    const std::string what = fmt::format("{} {}", Kind::kWord, item->Name());
    const std::string folder = FolderOf(session, *item);
    const bool by_guid = IsGuid(name_) && item->GUID() == name_;
    const auto perform = [&] {
      return by_guid ? std::invoke(Kind::kDeleteByGuid, registry, name_)
                     : std::invoke(Kind::kDelete, registry, name_);
    };
    if constexpr (Kind::kHasFolder) {
      out.Done(record, DeleteWithFolder(session, {what, item->GUID(), folder, perform}));
    } else {
      RequireDeleted(perform());
      out.Done(record, fmt::format("Deleted the {}. Its files in {} stay.", what, folder));
    }
  }

  // The study area's own folder, or that of all layers of the kind.
  static std::string FolderOf(Session& session, typename Kind::Item& item) {
    if constexpr (Kind::kHasFolder) {
      return session.Manager().WorkingDirectory() + item.StudyAreaDir();
    } else {
      return std::invoke(Kind::kLayersFolder, RegistryOf(session));
    }
  }

  std::string name_;
};

template <class Kind>
class RegistryFolder : public ReadingCommand {
 public:
  explicit RegistryFolder(Arguments) {}

 private:
  void Run(Session& session, Output& out) override {
    const std::string folder = std::invoke(Kind::kLayersFolder, RegistryOf(session));
    out.Text({{"folder", folder}}, folder);
  }
};

template <class Kind>
void AddKind(const CommandGroup& registry) {
  const std::string word = Kind::kWord;
  const CommandGroup group = registry.Group(Kind::kCommand, fmt::format("The {}s", word));
  const auto line = [](std::string_view rest) {
    return fmt::format("kvdm registry {} {}", Kind::kCommand, rest);
  };
  group.Add<RegistryList<Kind>>("list", fmt::format("List the {}s", word), line("list"));
  group.Add<RegistryCreate<Kind>>("create", fmt::format("Make a {}", word), line("create North"));
  group.Add<RegistryShow<Kind>>("show", fmt::format("Show one {}", word), line("show North"));
  group.Add<RegistryDelete<Kind>>("delete", fmt::format("Delete a {}", word),
                                  line("delete North --yes"));
  if constexpr (!Kind::kHasFolder) {
    group.Add<RegistryFolder<Kind>>("dir", "Show the folder of their files", line("dir"));
  }
}

}  // namespace

void AddRegistryCommands(const CommandGroup& root) {
  const CommandGroup registry = root.Group(
      "registry", "Study areas and layers registered in the project itself, if it has them");
  AddKind<RegisteredAreaKind>(registry);
  AddKind<RegisteredCustomerKind>(registry);
  AddKind<RegisteredStoreKind>(registry);
}

}  // namespace kvdm
