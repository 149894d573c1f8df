#include "safety/trash.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

#include "safety/result.h"
#include "safety/working_directory.h"

namespace kvdm {
namespace {

constexpr char kTrash[] = ".kvdm-trash";

std::string NameOf(std::string folder) {
  while (folder.ends_with('\\')) folder.pop_back();
  return folder.substr(folder.rfind('\\') + 1);
}

}  // namespace

std::vector<Move> Trash::Plan(const std::string& folder, const std::string& guid) const {
  const auto found = os::FindSameFolder(drives_, folder);
  if (!found || os::IsLink(Native(*found))) return {};
  return {{*found, 0, NameOf(*found), guid}};
}

void Trash::Perform(const Move& move) const { move.back ? PutBack(move) : Take(move); }
void Trash::Revert(const Move& move) const { move.back ? Take(move) : PutBack(move); }

void Trash::RequireInside(const std::vector<Move>& moves) const {
  const WorkingDirectory directory(drives_, working_directory_);
  for (const Move& move : moves) {
    if (directory.Holds(move.folder)) continue;
    throw Failure(ExitCode::kUnsafe,
                  fmt::format("The folder {} is not in the working directory {}. Add --outside to "
                              "move it all the same.",
                              move.folder, working_directory_));
  }
}

bool Trash::Has(const Move& move) const {
  return os::FindSameFolder(drives_, PlaceOf(move)).has_value();
}

bool Trash::IsThere(const std::string& folder) const { return os::Exists(Native(folder)); }

std::vector<int> Trash::Numbers() const {
  std::vector<int> numbers;
  const std::string trash = working_directory_ + kTrash;
  for (const std::string& name : os::FoldersIn(drives_, trash, "")) {
    if (const auto number = NumberOfName(name)) numbers.push_back(*number);
  }
  std::ranges::sort(numbers);
  return numbers;
}

void Trash::Empty(int number) const try {
  os::DeleteTree(Native(FolderOf(number)));
} catch (const std::system_error& error) {
  throw Failure(
      ExitCode::kRefused,
      fmt::format("What change {} moved into the trash can't be deleted: {}. What is left "
                  "is in {}.",
                  number, error.what(), FolderOf(number)));
}

std::filesystem::path Trash::Native(const std::string& path) const {
  if (auto native = os::NativePlace(drives_, path)) return *std::move(native);
  throw std::system_error(std::make_error_code(std::errc::no_such_file_or_directory), path);
}

std::string Trash::FolderOf(int number) const {
  return fmt::format("{}{}\\{}", working_directory_, kTrash, NumberName(number));
}

std::string Trash::PlaceOf(const Move& move) const {
  return FolderOf(move.trash) + "\\" + move.name;
}

void Trash::Take(const Move& move) const {
  // What is in the place of a folder that is in the trash is another one.
  if (Has(move) || !os::FindSameFolder(drives_, move.folder)) return;
  try {
    const auto place = Native(FolderOf(move.trash));
    os::CreateFolders(place.parent_path());
    os::Hide(place.parent_path());
    os::CreateFolders(place);
    for (const auto& folder : {place, place.parent_path()}) os::SyncFolder(folder);
    os::MoveFolder(drives_, move.folder, PlaceOf(move));
  } catch (const std::system_error& error) {
    throw Failure(
        ExitCode::kUnsafe,
        fmt::format("The folder {} can't be moved into the trash of the working directory: "
                    "{}. Nothing was deleted. Add --no-trash to delete it for ever.",
                    move.folder, error.code().message()));
  }
}

void Trash::PutBack(const Move& move) const {
  if (!Has(move)) return;
  if (IsThere(move.folder)) {
    throw Failure(ExitCode::kConflict,
                  fmt::format("Something is in the place of the folder {}, which is in the trash. "
                              "Move it away, and try again.",
                              move.folder));
  }
  try {
    os::MoveFolder(drives_, PlaceOf(move), move.folder);
    os::RemoveFolder(Native(FolderOf(move.trash)));
  } catch (const std::system_error& error) {
    throw Failure(ExitCode::kRefused,
                  fmt::format("The folder {} can't be moved back from the trash: {}. It is in {}.",
                              move.folder, error.code().message(), PlaceOf(move)));
  }
}

}  // namespace kvdm
