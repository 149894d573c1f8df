// Additions: the files that a person names, in folders and lists too, as items to be made.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kvdm {

// What is to become an item.
struct Addition {
  std::string name;
  std::string file;        // its full path in the component's form
  std::string state = "";  // "new", "present" or "taken"
};

// The files named, and of each folder the layer files directly in it, each once. The name is that
// of the file without its extension. Failure kNotFound for what is not there.
[[nodiscard]] std::vector<Addition> AdditionsOf(const std::vector<std::string>& named);

// Those of a CSV list: its first line names the columns, of which "file" must be one and "name" may
// be. Files are looked for from the list's own folder. Failure kUnreadable for another list,
// kNotFound for a file that is not there.
[[nodiscard]] std::vector<Addition> AdditionsInList(const std::filesystem::path& list);

// The rows of a CSV text: fields between commas, or semicolons if the first line has no comma, with
// or without double quotes around them.
[[nodiscard]] std::vector<std::vector<std::string>> CsvRows(std::string_view text);

using TakenNames = std::vector<std::string>;

// Sets the state of each: "present" when `files` has its file already, "taken" when `names` or one
// before it has its name. With `numbers` the latter get another name and are new. All names are
// checked as those of new items.
void Judge(std::vector<Addition>& additions, const std::vector<std::string>& files,
           TakenNames names, bool numbers);

}  // namespace kvdm
