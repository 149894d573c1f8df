// Write-ahead record of a command: what it changes is noted in the history before it is done, so
// that it can be taken back, also when the command was ended at any moment.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/documents.h"
#include "safety/history.h"
#include "safety/trash.h"

namespace kvdm {

// Where a project's changes are noted, and its folders are when they are deleted.
struct Place {
  std::filesystem::path project_file;
  std::string working_directory;  // as a path of the component, with a separator at the end
  os::Drives drives;
  const Services* services = nullptr;

  // Failure kRefused when the system has no such working directory.
  [[nodiscard]] FolderHistory GetHistory() const;
  [[nodiscard]] Trash GetTrash() const { return {drives, working_directory}; }
};

class Recording {
 public:
  // Locks the history against others for as long as this lives. `recorded`, if there is any, gets
  // the number of each change that is stored. Failure kRefused.
  Recording(Place place, std::vector<std::string> command, std::vector<int>* recorded = nullptr);
  // Takes back what was begun and not ended, and tells people where that fails.
  ~Recording();
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;

  // Finishes or takes back what commands that were ended left half done, and tells of it: with
  // `outside` also where that moves folders that are not in the working directory. True when there
  // was any: then stored documents may have changed, and this records nothing more.
  bool Recover(bool outside);

  // Notes that the folder of an item goes, and moves it into the trash. False when there is no
  // folder of that very name. Failure kUnsafe when it can't be moved.
  bool MoveAway(const std::string& folder, const std::string& guid);
  // Folders are deleted for ever: they are not moved away.
  void LeaveTrash() { uses_trash_ = false; }
  [[nodiscard]] bool UsesTrash() const { return uses_trash_; }
  // Notes folders that were made; those of new items count, and with Store all.
  void Made(std::string_view folder) { made_.emplace_back(folder); }
  // Notes how a project is about to change, with all that was noted before.
  void NoteProject(const Project& before, const Project& after);
  // The change is stored.
  void End();

  // Brings the stored documents to `wanted`, and moves folders, as one change. `undoes` is the
  // number of the one that is taken back by that, or 0.
  void Store(const Documents& stored, const Documents& wanted, const std::vector<Move>& moves,
             int undoes = 0);

  [[nodiscard]] FolderHistory& GetHistory() { return history_; }
  [[nodiscard]] const Place& GetPlace() const { return place_; }

 private:
  void NoteRegistry(const std::string& document, const std::string& before,
                    const std::string& after);
  void Begin();
  void NoteMade();
  void Settle(const ChangeRecord& record);
  void TakeBack(const ChangeRecord& record);
  [[nodiscard]] bool IsOurs(const ChangeRecord& record) const;

  Place place_;
  FolderHistory history_;
  Trash trash_;
  std::shared_ptr<void> lock_;
  ChangeRecord record_;
  std::map<std::string, Changes> registry_changes_;  // by document
  std::vector<std::string> made_;
  std::vector<int>* recorded_;
  bool uses_trash_ = true;
};

// Tells of changes that are neither done nor taken back.
void TellOfUnfinished(const Place& place);

// A change for people: "Change 12 (area delete North)".
[[nodiscard]] std::string NameOf(const ChangeRecord& record);

}  // namespace kvdm
