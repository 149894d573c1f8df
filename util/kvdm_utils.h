// Names, identifiers, and whole folder trees.
#pragma once

#include <string>
#include <string_view>

#include <kvdm/platform/file_system.h>
#include <kvdm/platform/gis_core.h>
#include <kvdm/platform/log.h>

namespace kvdm {

// "_" + name + "_": the form in which names of study areas, analyses and layers are stored.
[[nodiscard]] std::string WrapName(std::string_view name);

// Takes one underscore off each end; a text that lacks either, or is a single one, comes back
// unchanged.
//
//   UnwrapName("_a_")   // "a"
//   UnwrapName("__")    // ""
//   UnwrapName("_")     // "_"
[[nodiscard]] std::string UnwrapName(std::string_view stored_name);

// A new identifier in registry form with braces, 38 characters.
[[nodiscard]] std::string NewGuidString(GisCore& gis_core);

// `text` with a CR put before every LF, also before one that follows a CR already.
[[nodiscard]] std::string WidenLineEnds(std::string_view text);

// `path` with every doubled backslash made single, in one pass from the left: three become two.
[[nodiscard]] std::string CollapseBackslashes(std::string_view path);

// Deletes a folder with all its contents; `path` ends in one backslash. True when nothing is left
// of it. Hidden, system and read-only entries stay, and so does what holds them; links are removed,
// never followed. Names are compared without regard to letter case; trailing dots and blanks count.
// Links in the path in front of the folder are followed, once, when that place is opened.
//
// Refuses, False and nothing touched, a path that is not rooted, names no folder below a drive's or
// share's root, ends in two backslashes, or has a component of dots only. Without the backslash at
// the end only a folder without folders inside is deleted: the files go, and False comes at the
// first folder. A failure is noted in `log`.
bool DeleteFolderTree(FileSystem& files, std::string_view path, Log* log = nullptr);

// Deletes what is in an open folder, as DeleteFolderTree does, and keeps the folder. Errors reach
// the caller, at the first thing that can't be deleted; then `folder` may be in a folder inside.
void EmptyFolder(Directory& folder);

// Creates a folder unless it exists, by one call when it does not. Errors reach the caller.
void CreateFolderUnlessThere(FileSystem& files, std::string_view path);

// Creates every missing folder along `path`, from the one after its first backslash. Errors reach
// the caller.
void CreateFolderPath(FileSystem& files, std::string_view path);

}  // namespace kvdm
