// View of the disk for many questions about few folders: each folder is listed once.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <kvdm/platform/file_system.h>

namespace kvdm {

// Paths are the component's. What can't be looked at counts as there.
class DiskView {
 public:
  explicit DiskView(std::shared_ptr<FileSystem> files) : files_(std::move(files)) {}

  [[nodiscard]] bool HasFolder(const std::string& path) const;
  [[nodiscard]] bool HasFile(const std::string& path) const;
  // Whether a folder has a file with this name, whatever its extension.
  [[nodiscard]] bool HasFileNamed(const std::string& folder, const std::string& base_name) const;

  // What is seen in a folder; nothing when it is missing or can't be listed.
  [[nodiscard]] std::vector<std::string> FilesIn(const std::string& folder) const;
  [[nodiscard]] std::vector<std::string> FoldersIn(const std::string& folder) const;

 private:
  struct Listing {
    bool is_known = true;
    std::set<std::string> files;
    std::set<std::string> skeletons;   // what names that mean the same have in common
    std::set<std::string> base_names;  // without extensions
    std::set<std::string> folders;
  };

  [[nodiscard]] const Listing& ListingOf(const std::string& folder) const;
  [[nodiscard]] Listing Listed(const std::string& folder) const;

  std::shared_ptr<FileSystem> files_;
  mutable std::map<std::string, Listing> listings_;
  mutable std::map<std::string, bool> folders_;
};

}  // namespace kvdm
