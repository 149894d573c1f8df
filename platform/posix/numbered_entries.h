// The entries of a listing by the number in their names: which names are free is found out among
// them.
#pragma once

#include <dirent.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_names.h"
#include "platform/posix/files.h"

namespace kvdm {

// Of the entries that it visits it keeps those whose name is `start` in any letter case, a number
// as Numbered appends it, and
//
// - of kFolders, trailing blanks and dots: what a path to that name may mean;
// - of kFiles, an extension: what a search for "name.*" finds.
class NumberedEntries {
 public:
  enum Kind { kFolders, kFiles };

  NumberedEntries(std::string_view start, Kind kind);

  // For ListEntries; to be called while this is there.
  [[nodiscard]] EntryVisitor Visitor();

  // Whether there is a folder of this number, and nothing else. Nothing when only a look at the
  // entries tells: there are several, or a link, or the file system does not say what it is.
  [[nodiscard]] std::optional<bool> HasOnlyFolder(int number) const;

  // Whether `chosen` takes the name of one of this number.
  template <class Chosen>
  [[nodiscard]] bool AnyOf(int number, Chosen chosen) const {
    for (int at = last_.at(number); at >= 0; at = entries_[at].before) {
      if (chosen(entries_[at].name)) return true;
    }
    return false;
  }

 private:
  struct Entry {
    std::string name;
    unsigned char type;
    int before;  // the index of another one of its number; -1 for none
  };

  std::string start_;
  Kind kind_;
  std::vector<Entry> entries_;
  std::vector<int> last_;  // by number, the index of one of its entries; -1 for none
};

}  // namespace kvdm
