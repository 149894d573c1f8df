// kvdm catalogue: where the study areas of all projects are kept.
#include <fmt/format.h>

#include <system_error>

#include <kvdm/platform/document_tree.h>

#include "host/checks.h"
#include "host/commands/groups.h"
#include "host/documents.h"
#include "host/os.h"
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

std::string CatalogueText(Session& session) {
  session.Component().RequireRegistry();
  return StoredDocuments(session.File(), *session.Component().GetServices().platform.registry)
      .at(kCatalogueDocument);
}

class CatalogueExport : public ReadingCommand {
 public:
  explicit CatalogueExport(Arguments arguments) {
    arguments.Optional("FILE", file_, "A new file; without it the text is printed");
  }

 private:
  void Run(Session& session, Output& out) override {
    const std::string text = CatalogueText(session);
    if (!file_) return out.Text({{"catalogue", text}}, text);
    const auto file = os::Absolute(os::ToPath(*file_));
    if (os::Exists(file)) {
      throw Failure(ExitCode::kConflict,
                    fmt::format("There is {} already. It stays as it is.", os::ToText(file)));
    }
    os::Replace(file, text);
    out.Done({{"file", os::ToText(file)}},
             fmt::format("Wrote the list of study areas to {}.", os::ToText(file)));
  }

  std::optional<std::string> file_;
};

// Puts a whole catalogue in the place of the one that is stored.
class CatalogueReplacement : public AskingCommand {
 protected:
  using AskingCommand::AskingCommand;

 private:
  [[nodiscard]] virtual std::string NewText() const = 0;
  [[nodiscard]] bool ChangesRegistry() const final { return true; }

  Question ToAsk(Session& session) override {
    const Platform& platform = session.Component().GetServices().platform;
    const std::string text = Checked(*platform.xml_parser, NewText());
    const std::string now = CatalogueText(session);
    const auto count = [&](const std::string& of) {
      const auto tree = ReadDocumentTree(*platform.xml_parser, of);
      return tree && tree->Root() != nullptr ? tree->Root()->children.size() : 0;
    };
    return {fmt::format("This puts a list of {} study areas in the place of the one that all "
                        "projects share now, which has {}.",
                        count(text), count(now)),
            {{"from", now}, {"to", text}}};
  }

  void Run(Session& session, Output& out) override {
    Registry& registry = *session.Component().GetServices().platform.registry;
    session.Component().RequireRegistry();
    const Documents stored = StoredDocuments(session.File(), registry);
    Documents wanted = stored;
    wanted[kCatalogueDocument] =
        Checked(*session.Component().GetServices().platform.xml_parser, NewText());
    session.Store(stored, wanted);
    out.Done({{"registry", RegistryPlace()}},
             "The list of study areas is replaced. 'kvdm undo' takes that back.");
  }

  // Failure kUnreadable for a text that is no list of study areas.
  static std::string Checked(XmlParser& parser, std::string text) {
    const std::string problem = DocumentProblem(parser, "The list of study areas", text);
    if (!problem.empty()) throw Failure(ExitCode::kUnreadable, problem);
    const auto tree = ReadDocumentTree(parser, text);
    if (tree && tree->Root() != nullptr && tree->Root()->name == tags::kStudyAreaCollection) {
      return text;
    }
    throw Failure(ExitCode::kUnreadable,
                  "That is no list of study areas: it is one of something else.");
  }
};

class CatalogueImport : public CatalogueReplacement {
 public:
  explicit CatalogueImport(Arguments arguments) : CatalogueReplacement(arguments) {
    arguments.Required("FILE", file_, "What 'kvdm catalogue export' wrote");
  }

 private:
  [[nodiscard]] std::string NewText() const override try {
    return os::ReadBytes(os::ToPath(file_));
  } catch (const std::system_error& error) {
    throw Failure(ExitCode::kUnreadable,
                  fmt::format("The file {} can't be read: {}.", file_, error.code().message()));
  }

  std::string file_;
};

// Failure kRefused where nothing is kept.
Backups KeptCatalogues() {
  if (auto backups = CatalogueBackups()) return *std::move(backups);
  throw Failure(ExitCode::kRefused,
                "No states of the list of study areas are kept here: its "
                "registry is no file.");
}

class CatalogueBackupList : public Command {
 public:
  void Execute(const Invocation& invocation) override {
    invocation.out.Items(RowsOf(KeptCatalogues()), "Nothing was kept yet.");
  }
};

class CatalogueRestore : public CatalogueReplacement {
 public:
  explicit CatalogueRestore(Arguments arguments) : CatalogueReplacement(arguments) {
    arguments.Required("NUMBER", number_, "The state, as 'kvdm catalogue backups' lists it");
  }

 private:
  [[nodiscard]] std::string NewText() const override {
    return KeptCatalogues().Read(ListNumber(number_));
  }

  std::string number_;
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
  catalogue.Add<CatalogueExport>("export", "Print or write the whole list of study areas",
                                 "kvdm catalogue export areas.xml");
  catalogue.Add<CatalogueImport>("import",
                                 "Put a list of study areas in the place of the stored one",
                                 "kvdm catalogue import areas.xml");
  catalogue.Add<CatalogueBackupList>("backups", "List the last states of the list of study areas",
                                     "kvdm catalogue backups");
  catalogue.Add<CatalogueRestore>("restore", "Bring back one of these states",
                                  "kvdm catalogue restore 12");
  catalogue.Add<CatalogueRenew>("renew", "Set a damaged registry aside, to start a new one",
                                "kvdm catalogue renew");
}

}  // namespace kvdm
