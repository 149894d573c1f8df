// Names, paths and attributes of files, as all file systems understand them.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/error.h>

namespace kvdm {

// Attributes of files and folders, combined with `|`.
enum FileAttribute : unsigned {
  kReadOnlyAttribute = 1,
  kHiddenAttribute = 2,
  kSystemAttribute = 4,
  kFolderAttribute = 16,
};

// Where a path starts.
enum class PathStart {
  kNowhere,        // "", blanks, a share
  kDrive,          // D:\Data
  kDriveFolder,    // D:Data, in the current folder of that drive
  kCurrentDrive,   // \Data
  kCurrentFolder,  // Data
};

// A path cut at its separators. "." and ".." are still among the names; a last name of nothing but
// blanks and dots is not.
struct PathParts {
  PathStart start = PathStart::kNowhere;
  char drive = 0;  // In upper case; 0 when the path names none.
  std::vector<std::string> names;
};
[[nodiscard]] PathParts SplitPath(std::string_view path);

// A folder or file on a drive, by the names that lead to it from the root.
struct DrivePath {
  char drive = 0;
  std::vector<std::string> names;

  // "D:\Data\North"; "D:\" for a root.
  [[nodiscard]] std::string Text() const;
};

// The place that `parts` mean when `current` is the current folder. The current folder of every
// other drive is its root. Nothing for a path that starts nowhere.
[[nodiscard]] std::optional<DrivePath> ResolvePath(const PathParts& parts,
                                                   const DrivePath& current);

// A search pattern as the folder path in front and the name pattern; "*" when it has none.
struct SearchPattern {
  std::string_view folder;  // "." for the current folder.
  std::string_view name;
};
[[nodiscard]] SearchPattern SplitPattern(std::string_view pattern);

// Whether a file or folder may get this name: UTF-8 text of up to 255 UTF-16 units without control
// characters and without < > : " / \ | ? *
[[nodiscard]] bool IsCreatableName(std::string_view name);

// `name` without trailing blanks and dots.
[[nodiscard]] std::string_view TrimmedName(std::string_view name);

[[nodiscard]] std::string PathIn(std::string_view folder, std::string_view name);

// `unit`, a UTF-16 unit, in upper case as file names are compared; itself when it has no other
// case. Each operating system brings its own table.
[[nodiscard]] char16_t UpperCase(char16_t unit);

// Whether two names or paths are equal without regard to letter case.
[[nodiscard]] bool SameName(std::string_view a, std::string_view b);

// Whether a folder in which `name` stands may have to be searched for `wanted`: they are the same
// but for letter case and for blanks and dots at the end.
[[nodiscard]] bool MayMean(std::string_view wanted, std::string_view name);
// The same for all names of which one may mean the other.
[[nodiscard]] std::size_t NameHash(std::string_view name);

// What follows `start` in a name that begins so, in any letter case.
[[nodiscard]] std::optional<std::string_view> AfterStart(std::string_view name,
                                                         std::string_view start);

// The case-folded form: the same for all names or paths that SameName calls equal.
[[nodiscard]] std::u32string FoldedName(std::string_view name);

// Whether `name` matches `pattern` without regard to letter case: `*` stands for any characters,
// `?` for one other than a dot, or for none before a dot and at the end, and ".*" at the end also
// for nothing.
[[nodiscard]] bool MatchesPattern(std::string_view name, std::string_view pattern);

// The one of `names` that is `wanted`: the very name, else the first in another letter case. A byte
// that is not UTF-8 equals itself only.
[[nodiscard]] std::optional<std::string> FindSameName(const std::vector<std::string>& names,
                                                      std::string_view wanted);

// The one of `names` that `wanted` means: the same name, else the first that is the same without
// trailing blanks and dots.
[[nodiscard]] std::optional<std::string> FindName(const std::vector<std::string>& names,
                                                  std::string_view wanted);

// 16 unpredictable hexadecimal digits.
[[nodiscard]] std::string RandomDigits();

// A new hidden name for a temporary file.
[[nodiscard]] std::string TemporaryFileName();

// FindName or FindSameName.
using NameFinder = std::optional<std::string> (*)(const std::vector<std::string>& names,
                                                  std::string_view wanted);

// Sorts names as a listing shows them: by letters without regard to case.
void SortNames(std::vector<std::string>& names);

// The last number that a name is tried with.
inline constexpr int kLastNumber = std::numeric_limits<std::int16_t>::max();

// `base`, followed by the number unless that is 0.
[[nodiscard]] std::string Numbered(std::string_view base, int number);

// The least number from 0 on that is not taken. Run-time error 6 once 32767 is taken.
template <std::predicate<int> Taken>
[[nodiscard]] int FirstFreeNumber(Taken&& taken) {
  for (int number = 0; number <= kLastNumber; ++number) {
    if (!taken(number)) return number;
  }
  throw RuntimeError(kOverflow);
}

// An error about a path: the number's classic description, then the path.
[[nodiscard]] RuntimeError PathError(std::int32_t number, std::string_view path);

}  // namespace kvdm
