// Ownership: which project a working directory belongs to, recorded in that directory.
//
//   WORKDIR/.kvdm/owner.json   {"schema": "kvdm.owner/1", "project": "../Shops.kvdm", ...}
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace kvdm {

// A project as it comes to a working directory: the file that holds it, with its resolved path, and
// the identifier in it, "" in one that has none yet.
struct Holder {
  std::filesystem::path file;
  std::string id;
};

struct Owner {
  // The file of the project that the working directory belongs to: relative to the directory, so
  // that both may be moved or copied together; absolute where there is no such path.
  std::string project;
  std::string id;
  std::string person;   // who made the record,
  std::string machine;  // and on which computer
  bool is_shared = false;

  bool operator==(const Owner&) const = default;
};

enum class Tenure {
  kUnclaimed,  // no record says whose it is
  kOwn,
  kShared,  // declared to be everybody's who has it
  kForeign  // another project's
};

// Whether a folder has a record, and so is a working directory. False where that can't be told.
[[nodiscard]] bool IsClaimed(const std::filesystem::path& working_directory);

// The record of a working directory; nothing when it has none. Failure kUnreadable for one that is
// damaged or of a newer version, std::system_error for one that can't be read.
[[nodiscard]] std::optional<Owner> ReadOwner(const std::filesystem::path& working_directory);

// Makes or replaces the record. std::system_error when that can't be done.
void WriteOwner(const std::filesystem::path& working_directory, const Owner& owner);

// Takes back a record that was just made. What can't be removed stays.
void RemoveOwner(const std::filesystem::path& working_directory);

// The record of `holder`, made by this person on this computer.
[[nodiscard]] Owner OwnerFor(const std::filesystem::path& working_directory, const Holder& holder);

// The file that a record names, as an absolute path.
[[nodiscard]] std::filesystem::path ProjectOf(const std::filesystem::path& working_directory,
                                              const Owner& owner);

// Whether that file is no more. Only the computer of the record can tell.
[[nodiscard]] bool IsGone(const std::filesystem::path& working_directory, const Owner& owner);

// What a working directory is to a project. It is still its own when the project was moved: it
// has the identifier of the record, and its former file is gone.
[[nodiscard]] Tenure TenureOf(const std::filesystem::path& working_directory,
                              const std::optional<Owner>& owner, const Holder& holder);

}  // namespace kvdm
