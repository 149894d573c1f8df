// Files, folders and locks of the operating system, as safety and hosts need them beside what the
// component asks. Failures are std::system_error.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kvdm::os {

// Whether there is anything at a path. A link counts, wherever it leads.
[[nodiscard]] bool Exists(const std::filesystem::path& path);

// An absolute path for a path, "." and ".." resolved by their text. It may end in a separator.
[[nodiscard]] std::filesystem::path Absolute(const std::filesystem::path& path);

// The absolute path of what a path leads to, links followed.
[[nodiscard]] std::filesystem::path Canonical(const std::filesystem::path& path);

// The paths of the regular files in a folder, and of those that may be regular files for all that
// can be told.
[[nodiscard]] std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder);

// Makes a folder, and those above it, where they are missing.
void CreateFolders(const std::filesystem::path& folder);

// On return a loss of power does not lose the names in a folder, nor its own.
void SyncFolder(const std::filesystem::path& folder);

// The bytes of a regular file. errc::file_too_large when it has more than `most`; no more are read.
inline constexpr std::size_t kMostBytes = std::size_t{256} << 20U;
[[nodiscard]] std::string ReadBytes(const std::filesystem::path& file,
                                    std::size_t most = kMostBytes);

// Puts a file with these bytes in the place of `file` in one step, with the permissions of what is
// there and, as far as the process may, its owner; on return it is on the disk. What is there stays
// as `previous`, unless that is "". Nothing is ever written through a link or to a device: what is
// there must be a regular file, and one that may be written. After a failure it is as before. False
// when the file is in place, but the disk did not confirm it.
bool Replace(const std::filesystem::path& file, std::string_view bytes,
             const std::filesystem::path& previous = {});

// Puts a file in the place of another, in one step.
void Rename(const std::filesystem::path& from, const std::filesystem::path& to);

// Removes a file, or a folder that is empty. One that is missing, or a folder that is not empty,
// is left as it is.
void RemoveFile(const std::filesystem::path& file);
void RemoveFolder(const std::filesystem::path& folder);

// Deletes a folder with all that is in it, hidden and read-only entries too. Links are removed and
// never followed. Fails at what begins another file system, and leaves that.
void DeleteTree(const std::filesystem::path& folder);

// Whether a file is marked as one that nobody may write.
[[nodiscard]] bool IsReadOnly(const std::filesystem::path& file);

// The folders behind drive letters, as MakeServices takes them.
using Drives = std::map<char, std::string>;

// Renames a folder that is no link, by paths of the component. On return it is so on the disk.
void MoveFolder(const Drives& drives, std::string_view from, std::string_view to);

// The full path of a folder, by a path of the component and in its form; nothing when there is no
// folder.
[[nodiscard]] std::optional<std::string> FindFolder(const Drives& drives, std::string_view path);

// The same, but only a folder of that very name, in whatever letter case.
[[nodiscard]] std::optional<std::string> FindSameFolder(const Drives& drives,
                                                        std::string_view path);

// The names of the folders in a folder that begin with `prefix`, hidden ones too and links not; by
// a path of the component. None when that folder is missing.
[[nodiscard]] std::vector<std::string> FoldersIn(const Drives& drives, std::string_view path,
                                                 std::string_view prefix);

// Locks a regular file, which is made when it is missing, against other processes for as long as
// the result lives. Nothing when another process holds it.
[[nodiscard]] std::shared_ptr<void> TryLock(const std::filesystem::path& file);

// The path of the system that a path of the component leads to, links not followed, with the names
// of what is there as they are. Nothing for a path that is not full, and for one on a drive that
// this computer does not have.
[[nodiscard]] std::optional<std::filesystem::path> NativePlace(const Drives& drives,
                                                               std::string_view path);

// Whether two names of the system mean one file in one folder.
[[nodiscard]] bool AreSame(const std::filesystem::path& a, const std::filesystem::path& b);

// Whether a link stands at a path itself.
[[nodiscard]] bool IsLink(const std::filesystem::path& path);

// What is in a folder, those in it and hidden ones included, but not the recovery files of hosts.
// Links count as files, and are not followed.
struct TreeSize {
  std::int64_t files = 0;
  std::int64_t bytes = 0;
  bool is_whole = true;  // False when some of it can't be looked at
};
[[nodiscard]] TreeSize SizeOfTree(const std::filesystem::path& folder);

// Hides a folder from listings, where its name alone does not do that.
void Hide(const std::filesystem::path& folder);

// Who works here, and on which computer; "" where the system does not say.
[[nodiscard]] std::string Person();
[[nodiscard]] std::string Machine();
// That person's own folder; "" where there is none.
[[nodiscard]] std::filesystem::path HomeFolder();

// A path as UTF-8 text, and back. The text of a path that the system's own text does not allow is
// not valid UTF-8.
[[nodiscard]] std::string ToText(const std::filesystem::path& path);
[[nodiscard]] std::filesystem::path ToPath(std::string_view text);

// An absolute path in the component's own form.
//
//   ComponentPath("/home/ann/North")      // Z:\home\ann\North
//   ComponentPath("C:/Users/Ann/North")   // C:\Users\Ann\North
[[nodiscard]] std::string ComponentPath(const std::filesystem::path& absolute);

// A path of the component in the system's form; itself when it is on a drive that the system does
// not have.
//
//   NativePath(R"(Z:\home\ann)")   // /home/ann
[[nodiscard]] std::string NativePath(std::string_view path);

}  // namespace kvdm::os
