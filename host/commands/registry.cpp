// kvdm registry: the study areas and layers that a project registers directly in its metadata.
#include "datamanager/area_registry.h"
#include "host/commands/groups.h"
#include "host/commands/item_commands.h"
#include "host/deletion.h"

namespace kvdm {
namespace {

// A kind of registered item. `Rules` are its words and the operations of AreaRegistry.
template <class Rules>
struct Registered : CommandKind<ItemKind<typename Rules::Item>>, Rules {
  using Item = typename Rules::Item;
  using Ref = std::shared_ptr<Item>;
  static constexpr char kExample[] = "North";
  static constexpr char kNameHelp[] = "Its name";
  static constexpr ArgumentCheck kNewName = &RequireKey;
  static constexpr bool kNamesFile = false;

  // The list of names leaves out what is not for people.
  static std::vector<Ref> All(Session& session) {
    AreaRegistry& registry = session.Component().RegisteredItems();
    const NameListRef names = std::invoke(Rules::kNames, registry);
    std::vector<Ref> items;
    if (names->Count() == 0) return items;
    const NameListRef guids = std::invoke(Rules::kGuids, registry);
    for (const Value& guid : *guids) {
      Ref item = guid.IsNull() ? nullptr : std::invoke(Rules::kGetByGuid, registry, ToText(guid));
      if (item && Contains(*names, item->Name())) items.push_back(std::move(item));
    }
    return items;
  }

  // That with this "{GUID}", else the first of that name.
  static Ref Find(Session& session, const std::string& selector) {
    AreaRegistry& registry = session.Component().RegisteredItems();
    Ref item;
    if (HasGuid(registry, selector)) {
      item = std::invoke(Rules::kGetByGuid, registry, selector);
    } else if (std::invoke(Rules::kExists, registry, selector)) {
      item = std::invoke(Rules::kGet, registry, selector);
    } else {
      return TheOnlyOne<Registered>({}, selector);
    }
    static_cast<void>(Required(item));
    return item;
  }

  static Record Columns(const Ref& item) {
    if constexpr (Rules::kHasFolder) {
      return {{"folder", item->StudyAreaDir()}};
    } else {
      return {{"created", item->CreationTime()}};
    }
  }

  static Record Details(const Ref&, Session&, Output&) { return {}; }

  static Ref Create(Session& session, const std::string& name, Output&) {
    AreaRegistry& registry = session.Component().RegisteredItems();
    if (std::invoke(Rules::kExists, registry, name)) {
      throw Failure(ExitCode::kConflict, fmt::format("Another {} is named {}. Choose another name.",
                                                     Rules::kWord, name));
    }
    if (!std::invoke(Rules::kCreate, registry, name)) {
      throw Failure(ExitCode::kRefused,
                    fmt::format("The component did not make the {} {}.", Rules::kWord, name));
    }
    Ref item = std::invoke(Rules::kGet, registry, name);
    static_cast<void>(Required(item));
    return item;
  }

  static std::string WhereItIs(const Ref&) { return "."; }

  // The study area's own folder; that of all layers stays.
  static std::string FolderOf(Session& session, const Ref& item) {
    if constexpr (Rules::kHasFolder) {
      return session.Manager().WorkingDirectory() + item->StudyAreaDir();
    } else {
      return "";
    }
  }
  static std::string Remark(Session& session, const Ref&) {
    if constexpr (Rules::kHasFolder) {
      return "";
    } else {
      return fmt::format("Its files in {} stay.", Folder(session));
    }
  }

  static std::string Delete(Session& session, const Ref& item) {
    const std::string what = fmt::format("{} {}", Rules::kWord, item->Name());
    const auto perform = [&] { return DeleteThis(session.Component().RegisteredItems(), item); };
    if constexpr (Rules::kHasFolder) {
      return DeleteWithFolder(session, {what, item->GUID(), FolderOf(session, item), perform});
    } else {
      const std::string remark = Remark(session, item);
      RequireDeleted(perform());
      return fmt::format("Deleted the {}. {}", what, remark);
    }
  }

  static std::string Folder(Session& session) {
    return std::invoke(Rules::kLayersFolder, session.Component().RegisteredItems());
  }

 private:
  static bool Contains(const NameList& names, const std::string& name) {
    return std::any_of(names.begin(), names.end(), [&](const Value& value) {
      return !value.IsNull() && ToText(value) == name;
    });
  }

  static bool HasGuid(AreaRegistry& registry, const std::string& guid) {
    return IsGuid(guid) && std::invoke(Rules::kExistsByGuid, registry, guid);
  }

  // By identifier, unless the first that has it is another one.
  static bool DeleteThis(AreaRegistry& registry, const Ref& item) {
    const std::string name = item->Name();
    const std::string guid = item->GUID();
    const bool by_guid =
        HasGuid(registry, guid) && std::invoke(Rules::kGetByGuid, registry, guid)->Name() == name;
    return by_guid ? std::invoke(Rules::kDeleteByGuid, registry, guid)
                   : std::invoke(Rules::kDelete, registry, name);
  }
};

struct RegisteredAreaRules {
  using Item = IKVStudyArea;
  static constexpr char kWord[] = "registered study area";
  static constexpr char kPlural[] = "registered study areas";
  static constexpr char kCommand[] = "registry area";
  static constexpr auto kNames = &AreaRegistry::StudyAreaNames;
  static constexpr auto kGuids = &AreaRegistry::StudyAreaGUIDs;
  static constexpr auto kExists = &AreaRegistry::StudyAreaExists;
  static constexpr auto kExistsByGuid = &AreaRegistry::StudyAreaExistsByGUID;
  static constexpr auto kGet = &AreaRegistry::GetStudyArea;
  static constexpr auto kGetByGuid = &AreaRegistry::GetStudyAreaByGUID;
  static constexpr auto kCreate = &AreaRegistry::CreateStudyArea;
  static constexpr bool (AreaRegistry::*kDelete)(std::string_view) = &AreaRegistry::DeleteStudyArea;
  static constexpr auto kDeleteByGuid = &AreaRegistry::DeleteStudyAreaByGUID;
  static constexpr bool kHasFolder = true;  // which is deleted with it
};

struct RegisteredCustomerRules {
  using Item = IKVCustLayer;
  static constexpr char kWord[] = "registered customer layer";
  static constexpr char kPlural[] = "registered customer layers";
  static constexpr char kCommand[] = "registry customer";
  static constexpr auto kNames = &AreaRegistry::CustLayerNames;
  static constexpr auto kGuids = &AreaRegistry::CustLayerGUIDs;
  static constexpr auto kExists = &AreaRegistry::CustLayerExists;
  static constexpr auto kExistsByGuid = &AreaRegistry::CustLayerExistsByGUID;
  static constexpr auto kGet = &AreaRegistry::GetCustLayer;
  static constexpr auto kGetByGuid = &AreaRegistry::GetCustLayerByGUID;
  static constexpr auto kCreate = &AreaRegistry::RegisterCustLayer;
  static constexpr auto kDelete = &AreaRegistry::UnregisterCustLayer;
  static constexpr auto kDeleteByGuid = &AreaRegistry::UnregisterCustLayerByGUID;
  static constexpr auto kLayersFolder = &AreaRegistry::CustomersDir;
  static constexpr bool kHasFolder = false;
};

struct RegisteredStoreRules {
  using Item = IKVStoreLayer;
  static constexpr char kWord[] = "registered store layer";
  static constexpr char kPlural[] = "registered store layers";
  static constexpr char kCommand[] = "registry store";
  static constexpr auto kNames = &AreaRegistry::StoreLayerNames;
  static constexpr auto kGuids = &AreaRegistry::StoreLayerGUIDs;
  static constexpr auto kExists = &AreaRegistry::StoreLayerExists;
  static constexpr auto kExistsByGuid = &AreaRegistry::StoreLayerExistsByGUID;
  static constexpr auto kGet = &AreaRegistry::GetStoreLayer;
  static constexpr auto kGetByGuid = &AreaRegistry::GetStoreLayerByGUID;
  static constexpr auto kCreate = &AreaRegistry::RegisterStoreLayer;
  static constexpr auto kDelete = &AreaRegistry::UnregisterStoreLayer;
  static constexpr auto kDeleteByGuid = &AreaRegistry::UnregisterStoreLayerByGUID;
  static constexpr auto kLayersFolder = &AreaRegistry::StoresDir;
  static constexpr bool kHasFolder = false;
};

template <class Rules>
void AddKind(const CommandGroup& registry, const std::string& name) {
  using Kind = Registered<Rules>;
  const CommandGroup group = registry.Group(name, fmt::format("The {}", Kind::kPlural));
  AddListCommand<Kind>(group);
  AddCreateCommand<Kind>(group);
  AddShowCommand<Kind>(group);
  AddDeleteCommand<Kind>(group);
  if constexpr (!Kind::kHasFolder) AddFolderCommand<Kind>(group, "their files");
}

}  // namespace

void AddRegistryCommands(const CommandGroup& root) {
  const CommandGroup registry = root.Group(
      "registry", "Study areas and layers registered in the project itself, if it has them");
  AddKind<RegisteredAreaRules>(registry, "area");
  AddKind<RegisteredCustomerRules>(registry, "customer");
  AddKind<RegisteredStoreRules>(registry, "store");
}

}  // namespace kvdm
