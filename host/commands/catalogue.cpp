// kvdm catalogue: where the study areas of all projects are kept.
#include <fmt/format.h>

#include "host/commands/groups.h"
#include "host/project_file.h"
#include "platform/xml/document.h"
#include "util/names.h"

namespace kvdm {
namespace {

// The attribute of the study area that `text` holds; nothing when it holds something else.
Field AttributeIn(const xml::Document& document, const char* attribute) {
  const auto root = document.DocumentElement();
  const Value value = root ? root.GetAttribute(attribute) : Value(Null());
  return value.IsNull() ? Field() : Field(ToText(value));
}

class CatalogueHistory : public ReadingCommand {
  void Run(Session& session, Output& out) override {
    const Platform& platform = session.Component().GetServices().platform;
    const auto all = session.Component().KeptStudyAreas();
    session.Component().RequireRegistry();
    std::vector<Record> items;
    for (const KeptValue& kept : all) {
      xml::Document document;
      document.LoadXml(*platform.xml_parser, kept.value.data);
      items.push_back({{"kept_at", kept.when},
                       {"name", AttributeIn(document, attributes::kName)},
                       {"guid", AttributeIn(document, attributes::kGuid)},
                       {"text", kept.value.data}});
    }
    out.Items(std::move(items), "Nothing was kept.");
  }
};

class CatalogueRenew : public Command {
 public:
  void Execute(const Invocation& invocation) override {
    const auto lock_file = RegistryLockFile();
    const auto lock = lock_file ? WaitForLock(*lock_file, "The registry") : nullptr;
    const auto aside = SetRegistryAside(invocation.out);
    if (!aside) {
      throw Failure(ExitCode::kRefused,
                    fmt::format("The registry {} is not damaged, so it stays as it is. 'kvdm "
                                "status' tells its state.",
                                RegistryPlace()));
    }
    invocation.out.Done({{"registry", RegistryPlace()}, {"set_aside", *aside}},
                        fmt::format("Set the damaged registry aside as {}. The next change starts "
                                    "a new one.",
                                    *aside));
  }
};

}  // namespace

void AddCatalogueCommands(const CommandGroup& root) {
  const CommandGroup catalogue =
      root.Group("catalogue", "Where the study areas of all projects are kept");
  catalogue.Add<CatalogueHistory>("history", "List what gave way to other changes",
                                  "kvdm catalogue history --json");
  catalogue.Add<CatalogueRenew>("renew", "Set a damaged registry aside, to start a new one",
                                "kvdm catalogue renew");
}

}  // namespace kvdm
