// Recovery side-cars: what brings items back when the registry or the project is lost. A host keeps
// them beside its items and has them follow every change.
//
//   StudyAreas\North\.kvdm-item.json   a study area or an analysis, in its folder
//   .kvdm\items-Retail.json            the layers and data items of the project Retail, in the
//                                      working directory
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/document_tree.h>
#include <kvdm/platform/platform.h>

namespace kvdm {

// An item as a side-car has it.
struct KeptItem {
  std::string collection;  // the tag of the element that it stood in
  DocumentNode element;

  bool operator==(const KeptItem&) const = default;
};

struct ItemFile {
  std::string working_directory;  // the one that the paths are of
  std::vector<KeptItem> items;
};

[[nodiscard]] std::string ItemFileText(const Platform& platform, const ItemFile& file);
// Nothing for a text that is none, or of a newer version.
[[nodiscard]] std::optional<ItemFile> ParseItemFile(const Platform& platform,
                                                    std::string_view text);

// The side-cars of one working directory.
class ItemFiles {
 public:
  // `owner` is the name of the project.
  ItemFiles(const Platform& platform, std::string_view working_directory, std::string_view owner);

  // Brings the side-cars up to date with what is stored now: those of items that `before`, the
  // metadata document before the change, has the same are left alone, unless it is "". Study areas
  // are those whose folder is in the working directory. One that can't be written is noted in the
  // log; the next change tries again.
  void Follow(std::string_view before, std::string_view metadata, std::string_view catalogue) const;

 private:
  [[nodiscard]] std::string PlaceOf(const DocumentNode& element) const;
  [[nodiscard]] std::string LayersPlace() const;
  void Write(const std::string& path, std::vector<KeptItem> items) const;
  void WriteLayers(std::vector<KeptItem> items) const;

  Platform platform_;
  std::string folder_;  // with a separator at its end
  std::string owner_;
};

// The folder, in a working directory, of what hosts keep there, and the beginning of the names of
// the side-cars in it.
inline constexpr char kHostFolder[] = ".kvdm";
inline constexpr char kItemsPrefix[] = "items-";

}  // namespace kvdm
