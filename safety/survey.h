// Survey: what is stored, item by item, with a view of the disk that it tells of.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/document_tree.h>
#include <kvdm/platform/platform.h>

#include "safety/disk_view.h"
#include "safety/rebase.h"

namespace kvdm {

// What is looked at: a document, a working directory and a catalogue, as far as they can be read.
struct Subject {
  Platform platform;
  Holdings stored;
  // Why the holder of the document can't be read, as sentences; "" when it can.
  std::string problem = {};
  // An earlier state of it, for when it can't.
  std::optional<Holdings> previous = {};
  // The folder that the holder is in, by the component's path; "" when it is in none.
  std::string place = {};
  // The other project that the working directory belongs to; "" for none.
  std::string other_owner = {};
  // Why it can't be told whose the working directory is; "" when it can.
  std::string owner_problem = {};

  // What an embedding host has of the holdings and may not have stored yet.
  std::optional<Holdings> held = {};
  // Whether nobody may write a file or folder, by the component's path; unset where that is
  // unknown.
  std::function<bool(const std::string& path)> is_read_only = {};
  std::string preset_folder = {};  // where the preset data are; "" for nowhere

  std::string registry = {};         // where the catalogue is, for people
  bool has_catalogue = true;         // whether it could be read
  RegistryCondition condition = {};  // what the look at it found
  std::vector<KeptValue> kept = {};  // earlier states, and parts, of the catalogue
};

// What is the same for all items of a kind.
struct StoredKind {
  std::string_view collection;
  std::string_view tag;
  std::string_view word;            // in sentences
  std::string_view command;         // in command lines
  std::string_view flag;            // of the metadata commands, for this kind
  std::string_view file_attribute;  // which names the layer file
  std::string_view folder;          // of such items, in a working directory
  std::string_view layer_type;      // as metadata have it; "" for kinds without
  std::string_view layer_file;      // its name in the item's own folder; "" for kinds without one
  bool is_wrapped;                  // whether names are stored between underscores

  [[nodiscard]] bool HasFolder() const { return !layer_file.empty(); }
};

struct SurveyItem {
  const StoredKind* kind;
  DocumentNode* element;
  std::string name = {};
  std::string guid = {};
  std::string folder = {};     // of its own, as stored
  std::string file = {};       // the layer file: its full path where it is stored by its name
  bool is_own = true;          // False for study areas of other working directories
  bool is_reserved = false;    // whether a data file has only a name yet
  std::size_t namesakes = {};  // others of its kind with its GUID

  // "analysis Sales"
  [[nodiscard]] std::string Label() const;
  // A word that means it in command lines.
  [[nodiscard]] std::string Selector() const;
};

// The metadata of a layer, as far as they tell whose they are.
struct LayerDescription {
  bool is_there = false;
  bool is_foreign = false;   // whether those of another program stand where ours would
  std::string problem = {};  // why they can't be read
  std::string type = {};
  std::string name = {};
  std::string guid = {};
  std::set<std::string> parameters = {};
};

// The items of a subject. Their elements may be changed; then Wanted has the changes.
class Survey {
 public:
  explicit Survey(const Subject& subject);
  Survey(const Survey&) = delete;
  Survey& operator=(const Survey&) = delete;

  [[nodiscard]] const Subject& About() const { return subject_; }
  [[nodiscard]] const DiskView& Disk() const { return disk_; }
  [[nodiscard]] std::vector<SurveyItem>& Items() { return items_; }
  [[nodiscard]] const std::vector<SurveyItem>& Items() const { return items_; }

  // The roots of the documents; null when one is missing or can't be read.
  [[nodiscard]] const DocumentNode* Metadata() const { return RootOf(metadata_); }
  [[nodiscard]] DocumentNode* Metadata() { return RootOf(metadata_); }
  [[nodiscard]] const DocumentNode* Catalogue() const { return RootOf(catalogue_); }

  // The working directory of the settings, without a separator at its end, and whether it is there.
  [[nodiscard]] const std::string& WorkingDirectory() const { return working_directory_; }
  [[nodiscard]] bool HasWorkingDirectory() const;

  // A text property of the state that a project keeps.
  [[nodiscard]] std::string State(const char* property) const;

  // What the metadata of an item's layer say.
  [[nodiscard]] const LayerDescription& DescriptionOf(const SurveyItem& item) const;
  // The same of a layer file.
  [[nodiscard]] const LayerDescription& DescriptionOf(const std::string& file) const;

  // Has an element leave its document in Wanted.
  static void Remove(const SurveyItem& item) { item.element->name.clear(); }
  // What is stored, with the changes of elements.
  [[nodiscard]] Holdings Wanted();

 private:
  using Tree = std::optional<DocumentTree>;
  static const DocumentNode* RootOf(const Tree& tree) { return tree ? tree->Root() : nullptr; }
  static DocumentNode* RootOf(Tree& tree) { return tree ? tree->Root() : nullptr; }

  void AddItems(DocumentNode& parent, const std::string& collection);
  void AddItem(const StoredKind& kind, DocumentNode& element);

  const Subject& subject_;
  DiskView disk_;
  Tree metadata_;
  Tree catalogue_;
  std::string working_directory_;
  std::vector<SurveyItem> items_;
  mutable std::map<std::string, LayerDescription> descriptions_;
};

// Properties of the state and the settings of a project.
inline constexpr char kOpenAreaProperty[] = "Study Area Name";
inline constexpr char kOpenAreaGuidProperty[] = "Study Area GUID";
inline constexpr char kDirectorySetting[] = "VELKKVDirectory";

// A time as stored, in seconds since some day; nothing for a text of another form.
[[nodiscard]] std::optional<std::int64_t> SecondsOf(std::string_view stored_time);

// The entry of layer metadata that has the item's identifier.
inline constexpr char kGuidPath[] = "Velk/Kelvaro8/GUID";

}  // namespace kvdm
