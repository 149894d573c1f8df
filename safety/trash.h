// The trash of a working directory: folders that changes moved away, each by one rename.
#pragma once

#include <string>
#include <vector>

#include "safety/history.h"
#include "safety/os.h"

namespace kvdm {

// The folder NAME that the change 12 moved away is in .kvdm-trash\000012\NAME. Paths are those of
// the component.
class Trash {
 public:
  Trash(os::Drives drives, std::string working_directory)
      : drives_(std::move(drives)), working_directory_(std::move(working_directory)) {}

  // What moving a folder away takes; nothing when there is no folder of that very name, in whatever
  // letter case, or a link is in its place. Its trash number is not set yet.
  [[nodiscard]] std::vector<Move> Plan(const std::string& folder, const std::string& guid) const;

  // Does what a move says, or takes it back. Nothing, when that is done already. Failure kUnsafe
  // when a folder can't be moved into the trash, kConflict when something is in the place of one
  // that goes back, kRefused when it can't.
  void Perform(const Move& move) const;
  void Revert(const Move& move) const;

  // Failure kUnsafe when a move is of a folder that is not in the working directory: whoever wrote
  // a record can name any folder there.
  void RequireInside(const std::vector<Move>& moves) const;

  // Whether the trash has what a move moved away.
  [[nodiscard]] bool Has(const Move& move) const;
  // Whether a place is taken.
  [[nodiscard]] bool IsThere(const std::string& folder) const;

  // The numbers of the changes of which it has anything.
  [[nodiscard]] std::vector<int> Numbers() const;
  // Deletes what it has of a change, hidden and read-only entries too; links are removed and never
  // followed, and other file systems stay. Failure kRefused when something stays.
  void Empty(int number) const;

 private:
  [[nodiscard]] std::filesystem::path Native(const std::string& path) const;
  [[nodiscard]] std::string FolderOf(int number) const;
  [[nodiscard]] std::string PlaceOf(const Move& move) const;
  void Take(const Move& move) const;
  void PutBack(const Move& move) const;

  os::Drives drives_;
  std::string working_directory_;
};

}  // namespace kvdm
