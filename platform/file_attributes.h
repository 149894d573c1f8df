// The attributes of files and folders.
#pragma once

namespace kvdm {

// Combined with `|`, as the attribute numbers of files are.
enum FileAttribute : unsigned {
  kReadOnlyAttribute = 1,
  kHiddenAttribute = 2,
  kSystemAttribute = 4,
  kFolderAttribute = 16,
};

}  // namespace kvdm
