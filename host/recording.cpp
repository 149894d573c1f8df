#include "host/recording.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <utility>

#include <kvdm/platform/document_tree.h>

#include "host/os.h"
#include "host/project_file.h"
#include "util/guard.h"
#include "util/names.h"

namespace kvdm {
namespace {

std::string WithoutEnd(std::string_view folder) {
  while (folder.ends_with('\\')) folder.remove_suffix(1);
  return std::string(folder);
}

// Keeps a state of the catalogue, if that can be done.
void KeepCatalogue(const std::string& text) {
  if (text.empty()) return;
  guard::Skipping(nullptr, [&] {
    if (const auto backups = CatalogueBackups()) backups->Keep(text);
  });
}

// The folder that an element names; "" for none.
std::string FolderIn(XmlParser& parser, const std::string& element) {
  const auto tree = ReadDocumentTree(parser, element);
  const DocumentNode* root = tree ? tree->Root() : nullptr;
  return root == nullptr ? "" : WithoutEnd(root->Attribute(attributes::kDirName));
}

}  // namespace

FolderHistory Place::GetHistory() const {
  if (auto folder = os::NativePlace(drives, working_directory)) {
    return FolderHistory(*std::move(folder));
  }
  throw Failure(ExitCode::kRefused,
                fmt::format("This computer has no working directory {}.", working_directory));
}

std::string NameOf(const ChangeRecord& record) {
  return fmt::format("Change {} ({})", record.number, fmt::join(record.command, " "));
}

Recording::Recording(Place place, std::vector<std::string> command, std::vector<int>* recorded)
    : place_(std::move(place)),
      history_(place_.GetHistory()),
      trash_(place_.GetTrash()),
      record_(NewRecord("kvdm " KVDM_VERSION, std::move(command))),
      recorded_(recorded) {
  if (!(lock_ = history_.TryLock())) {
    lock_ = WaitForLock(history_.LockFile(),
                        fmt::format("The working directory {}", place_.working_directory));
  }
  record_.project = os::ToText(place_.project_file);
  record_.working_directory = place_.working_directory;
  place_.services->registry->SetNote(
      [this](const char* document, const std::string& before, const std::string& after) {
        NoteRegistry(document, before, after);
      });
}

Recording::~Recording() {
  place_.services->registry->SetNote(nullptr);
  if (record_.number == 0) return;
  try {
    TakeBack(record_);
  } catch (const std::exception& error) {
    Output::Tell(
        fmt::format("kvdm: What was begun could not be taken back now: {} The next change "
                    "does that; 'kvdm project save' is one.",
                    error.what()));
  }
}

bool Recording::MoveAway(const std::string& folder, const std::string& guid) {
  auto moves = uses_trash_ ? trash_.Plan(folder, guid) : std::vector<Move>();
  if (moves.empty()) return false;
  std::ranges::move(moves, std::back_inserter(record_.moves));
  Begin();
  trash_.Perform(record_.moves.back());
  return true;
}

void Recording::NoteRegistry(const std::string& document, const std::string& before,
                             const std::string& after) {
  Changes changes = ChangesBetween(*place_.services->platform.xml_parser, document, before, after);
  if (changes == registry_changes_[document]) return;
  registry_changes_[document] = std::move(changes);
  Begin();
  if (document == kCatalogueDocument) KeepCatalogue(before);
}

void Recording::NoteProject(const Project& before, const Project& after) {
  const Changes changes = ChangesBetween(*place_.services->platform.xml_parser, DocumentsOf(before),
                                         DocumentsOf(after));
  record_.changes = changes;
  NoteMade();
  // What the registry has is stored by now.
  if (!changes.empty() || !record_.made.empty()) {
    record_.is_complete = true;
    Begin();
  }
}

void Recording::NoteMade() {
  Changes all = record_.changes;
  for (const auto& [document, changes] : registry_changes_) {
    all.insert(all.end(), changes.begin(), changes.end());
  }
  for (const Change& change : all) {
    const std::string folder =
        change.before.empty() ? FolderIn(*place_.services->platform.xml_parser, change.after) : "";
    const bool is_new = std::ranges::any_of(
        made_, [&](const std::string& made) { return WithoutEnd(made) == folder; });
    if (is_new) record_.made.push_back({folder, 0, "", change.guid});
  }
}

// Writes the record with what is known by now.
void Recording::Begin() {
  ChangeRecord record = record_;
  for (const auto& [document, changes] : registry_changes_) {
    record.changes.insert(record.changes.end(), changes.begin(), changes.end());
  }
  history_.Begin(record);
  record_.number = record.number;
  record_.moves = record.moves;
}

void Recording::End() {
  if (record_.number == 0) return;
  const int number = std::exchange(record_.number, 0);
  if (recorded_ != nullptr) recorded_->push_back(number);
  // Where that fails the next change finds that it is done.
  guard::Skipping(nullptr, [&] { history_.End(number); });
}

void Recording::Store(const Documents& stored, const Documents& wanted,
                      const std::vector<Move>& moves, int undoes) {
  const Platform& platform = place_.services->platform;
  record_.changes = ChangesBetween(*platform.xml_parser, stored, wanted);
  record_.moves = moves;
  for (const std::string& folder : made_) record_.made.push_back({folder, 0, "", ""});
  record_.undoes = undoes;
  record_.is_complete = true;
  place_.services->registry->SetNote(nullptr);
  Begin();
  for (const Move& move : record_.moves) trash_.Perform(move);
  const auto old = stored.find(kCatalogueDocument);
  if (old != stored.end() && wanted.at(kCatalogueDocument) != old->second) {
    KeepCatalogue(old->second);
  }
  try {
    StoreDocuments(place_.project_file, platform, stored, wanted);
  } catch (const Unconfirmed&) {
    End();
    throw;
  }
  End();
}

void Recording::TakeBack(const ChangeRecord& record) {
  // What is written now is no change of this command.
  place_.services->registry->SetNote(nullptr);
  const Platform& platform = place_.services->platform;
  Changes changes = record.changes;
  for (const auto& [document, noted] : registry_changes_) {
    changes.insert(changes.end(), noted.begin(), noted.end());
  }
  const Documents stored =
      StoredDocuments(place_.project_file, *platform.registry, AreInRegistry(changes));
  // What is not as the change left it was not reached by it.
  const auto applied = Apply(*platform.xml_parser, stored, Inverse(changes));
  for (const Move& move : record.moves) trash_.Revert(move);
  StoreDocuments(place_.project_file, platform, stored, applied.documents);
  history_.Forget(record.number);
}

// Whether this person can finish or take back a change: the catalogue is each one's own, and so is
// a project that is still there.
bool Recording::IsOurs(const ChangeRecord& record) const {
  const bool same_project =
      record.project == record_.project || !os::Exists(os::ToPath(record.project));
  const bool same_person = record.person == record_.person && record.machine == record_.machine;
  return same_project && (same_person || !AreInRegistry(record.changes));
}

bool Recording::Recover(bool outside) {
  bool changed = false;
  for (const int number : history_.Begun()) {
    const ChangeRecord record = RebasedRecord(*place_.services->platform.xml_parser,
                                              history_.Read(number), place_.working_directory);
    if (!IsOurs(record)) continue;
    try {
      if (!outside) trash_.RequireInside(record.moves);
      changed = true;
      Settle(record);
    } catch (const Failure& failure) {
      Output::Tell(fmt::format("kvdm: {} was interrupted and can't be taken back: {}",
                               NameOf(record), failure.what()));
    }
  }
  return changed;
}

void Recording::Settle(const ChangeRecord& record) {
  const Platform& platform = place_.services->platform;
  const Documents stored =
      StoredDocuments(place_.project_file, *platform.registry, AreInRegistry(record.changes));
  if (!record.is_complete || !Holds(*platform.xml_parser, stored, record.changes)) {
    TakeBack(record);
    return Output::Tell(fmt::format("kvdm: {} was interrupted and is taken back.", NameOf(record)));
  }
  for (const Move& move : record.moves) trash_.Perform(move);
  history_.End(record.number);
}

void TellOfUnfinished(const Place& place) try {
  if (place.working_directory.empty()) return;
  const FolderHistory history = place.GetHistory();
  const auto numbers = history.Begun();
  if (numbers.empty() || !history.TryLock()) return;  // Whoever has it is at work.
  for (const int number : history.Begun()) {
    Output::Tell(
        fmt::format("kvdm: {} was interrupted. The next change takes it back or finishes "
                    "it; 'kvdm project save' is one.",
                    NameOf(history.Read(number))));
  }
} catch (const std::exception& error) {
  Output::Tell(
      fmt::format("kvdm: Whether changes were interrupted can't be told: {}", error.what()));
}

}  // namespace kvdm
