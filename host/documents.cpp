#include "host/documents.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/os.h"
#include "host/project_file.h"
#include "platform/portable/catalogue_update.h"
#include "safety/json.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

constexpr auto kMachine = RegistryRoot::kLocalMachine;
constexpr const char* kAliasValues[] = {kCustomerAliasValue, kStoreAliasValue};

std::string TextOf(Registry& registry, const char* name) {
  const auto stored = registry.Read(kMachine, kRegistryKey, name);
  return stored && stored->type == RegistryType::kText ? UpToNul(stored->data) : "";
}

std::string Aliases(Registry& registry) {
  Json aliases = Json::object();
  for (const char* name : kAliasValues) {
    const std::string text = TextOf(registry, name);
    if (!text.empty()) aliases[name] = text;
  }
  return aliases.dump();
}

// False when the registry refuses.
bool StoreAliases(Registry& registry, const std::string& text) {
  const Json aliases = ParseJson(text);
  for (const char* name : kAliasValues) {
    const std::string word = aliases.value(name, "");
    if (word == TextOf(registry, name)) continue;
    if (!registry.WriteText(kMachine, kRegistryKey, name, word)) return false;
  }
  return true;
}

bool StoreCatalogue(const Platform& platform, const std::string& before, const std::string& after) {
  const auto update = MakeCatalogueUpdate(platform, before, after);
  return platform.registry->Update(kMachine, kRegistryKey, kStudyAreaCollectionValue, *update);
}

}  // namespace

Documents DocumentsOf(const Project& project) {
  const bool has_text = !project.values.empty() && project.values.front().IsText();
  return {{kProjectDocument, has_text ? ToText(project.values.front()) : ""},
          {kSettingsDocument, PropertiesText(project.settings)},
          {kStateDocument, PropertiesText(project.state)},
          {kDrivesDocument, DrivesText(project.drives)}};
}

void PutInto(Project& project, const Documents& documents) {
  if (const std::string& text = documents.at(kProjectDocument); !text.empty()) {
    if (project.values.empty()) project.values.emplace_back();
    project.values.front() = text;
  }
  project.settings = PropertiesIn(documents.at(kSettingsDocument));
  project.state = PropertiesIn(documents.at(kStateDocument));
  project.drives = DrivesIn(documents.at(kDrivesDocument));
}

Holdings HoldingsIn(const Documents& documents) {
  const auto catalogue = documents.find(kCatalogueDocument);
  return {documents.at(kProjectDocument), PropertiesIn(documents.at(kSettingsDocument)),
          PropertiesIn(documents.at(kStateDocument)),
          catalogue == documents.end() ? "" : catalogue->second};
}

Documents With(Documents documents, const Holdings& holdings) {
  documents[kProjectDocument] = holdings.metadata;
  documents[kSettingsDocument] = PropertiesText(holdings.settings);
  documents[kStateDocument] = PropertiesText(holdings.state);
  const auto catalogue = documents.find(kCatalogueDocument);
  if (catalogue != documents.end()) catalogue->second = holdings.catalogue;
  return documents;
}

bool AreInRegistry(const Changes& changes) {
  return std::ranges::any_of(changes, [](const Change& change) {
    return change.document == kCatalogueDocument || change.document == kAliasesDocument;
  });
}

Documents StoredDocuments(const std::filesystem::path& project_file, Registry& registry,
                          bool with_registry) try {
  Documents documents = DocumentsOf(ReadProjectFile(project_file));
  if (!with_registry) return documents;
  documents[kCatalogueDocument] = TextOf(registry, kStudyAreaCollectionValue);
  documents[kAliasesDocument] = Aliases(registry);
  return documents;
} catch (const RuntimeError&) {
  throw Failure(ExitCode::kUnreadable, RegistrySentence(registry.Condition()));
}

void StoreDocuments(const std::filesystem::path& project_file, const Platform& platform,
                    const Documents& before, const Documents& after) {
  const auto differs = [&](const char* name) {
    return before.contains(name) && before.at(name) != after.at(name);
  };
  Registry& registry = *platform.registry;
  bool is_stored = true;
  if (differs(kCatalogueDocument)) {
    is_stored =
        StoreCatalogue(platform, before.at(kCatalogueDocument), after.at(kCatalogueDocument));
  }
  if (is_stored && differs(kAliasesDocument)) {
    is_stored = StoreAliases(registry, after.at(kAliasesDocument));
  }
  if (!is_stored) {
    throw Failure(ExitCode::kRefused, RegistrySentence(registry.Condition()));
  }
  const bool in_project = differs(kProjectDocument) || differs(kSettingsDocument) ||
                          differs(kStateDocument) || differs(kDrivesDocument);
  if (!in_project) return;
  Project project = ReadProjectFile(project_file);
  PutInto(project, after);
  WriteProjectFile(project_file, project);
}

std::optional<Backups> CatalogueBackups() {
  const auto lock = RegistryLockFile();
  if (!lock) return std::nullopt;
  return Backups(lock->parent_path() / "catalogue.xml");
}

std::vector<Record> RowsOf(const Backups& backups) {
  std::vector<Record> rows;
  for (const int number : backups.Numbers()) {
    rows.push_back({{"number", std::int64_t{number}},
                    {"kept", backups.When(number)},
                    {"bytes", static_cast<std::int64_t>(backups.Read(number).size())},
                    {"file", os::ToText(backups.FileOf(number))}});
  }
  return rows;
}

}  // namespace kvdm
