// What the component must do: a small, slow and plain account of it, made without it.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kvdm/platform/value.h>

#include "tests/model/folders.h"
#include "tests/model/kinds.h"
#include "tests/model/tree.h"

namespace kvdm::model {

// A list's texts; nothing stands for Null.
using Texts = std::vector<std::optional<std::string>>;
// Values under paths, in the order in which they came.
using ValueList = std::vector<std::pair<std::string, Value>>;

// The metadata of one layer, and one set of properties; nothing as long as there is none.
struct Exchange {
  std::optional<ValueList> metadata;
  std::optional<ValueList> properties;
};

void Put(ValueList& list, std::string_view path, const Value& value);

// Operations answer as the component's; failures are Faults.
class Model {
 public:
  // The whole observable state.
  [[nodiscard]] std::string MetadataText() const;
  [[nodiscard]] const std::string& RegistryText() const { return registry_text_; }
  [[nodiscard]] const Folders& Disk() const { return disk_; }
  [[nodiscard]] const std::string& CurrentStudyArea() const { return current_; }
  [[nodiscard]] std::vector<std::string> TakeMessages() { return std::exchange(messages_, {}); }

  Folders& Disk() { return disk_; }
  // The item of each kind that a client still holds.
  std::map<Kind, NodeRef>& Kept() { return kept_; }
  Exchange& Exchanged() { return exchange_; }
  [[nodiscard]] const Exchange& Exchanged() const { return exchange_; }

  // The data manager.
  [[nodiscard]] std::string WorkingDirectory() const { return directory_; }
  void SetWorkingDirectory(const std::string& path);
  void Flush();
  std::string TmpFilePath();
  void CleanTemp() { disk_.Clean(directory_ + "KelvaroTemp\\"); }
  void SetCurrentStudyArea(std::string_view name) { current_ = name; }
  // Nothing as root stands for a text that is not well-formed.
  void Load(const NodeRef& root);
  void PutCatalogue(const NodeRef& root, const std::string& text);
  // Starts anew with the host's setting `directory`; what was not saved is lost.
  void Start(const std::string& directory);
  // Saves, starts and loads.
  void Restart(const std::string& directory);
  std::string TablesDir();
  std::string FreeTablePath();

  // The collections.
  std::optional<Texts> List(Kind kind, std::string_view attribute);
  bool Exists(Kind kind, std::string_view attribute, std::string_view key);
  NodeRef Get(Kind kind, std::string_view attribute, std::string_view key);
  bool Create(Kind kind, std::string_view name);
  bool Delete(Kind kind, std::string_view attribute, std::string_view key);
  std::string FolderOf(Kind kind);

  // The items; `item` is there.
  std::string Read(Kind kind, const NodeRef& item, std::string_view property);
  void Write(Kind kind, const NodeRef& item, std::string_view property, std::string_view value);
  bool SetParameter(Kind kind, const NodeRef& item, std::string_view name, std::string_view value);
  static std::string GetParameter(const NodeRef& item, std::string_view name);
  static Texts Parameters(const NodeRef& item);
  bool ClearParameters(const NodeRef& item);
  std::string GetProperty(const NodeRef& item, std::string_view name);
  bool SetProperty(const NodeRef& item, std::string_view name, std::string_view value);
  void Export(Kind kind, const NodeRef& item);
  void Import(Kind kind, const NodeRef& item);
  bool WriteToPropertySet(const NodeRef& item);
  bool ReadFromPropertySet(const NodeRef& item);

 private:
  void Show(std::string message) { messages_.push_back(std::move(message)); }
  void BuildFreshMetadata();
  bool BuildDirectory(const std::string& path);

  // The element of a collection; the accessor's message and a fault when there is no document.
  NodeRef Collection(Kind kind);
  // Where lists, deletions and look-ups by identifier search.
  static NodeRef Group(Kind kind, const NodeRef& collection);
  // The folder of layers or data items, made when it is missing.
  std::string SettledFolder(Kind kind);
  bool CreateStudyArea(std::string_view name);
  bool CreateAnalysis(std::string_view name);
  bool CreateLayer(Kind kind, std::string_view name);
  bool CreateDataItem(std::string_view name);
  void DeleteFolders(Kind kind, const Node& item, bool by_guid);
  std::string CurrentFolder();
  std::string NewGuid();
  NodeRef NewItem(Kind kind, std::string_view name);

  void Rename(Kind kind, const NodeRef& item, std::string_view name);
  void WriteComments(const NodeRef& item, std::string_view comments);
  void ImportAnalysis(const NodeRef& item);
  void ImportStudyArea(const NodeRef& item);
  void ExportStudyArea(const NodeRef& item, ValueList& document);
  [[nodiscard]] Value Imported(std::string_view path) const;

  Folders disk_;
  std::map<Kind, NodeRef> kept_;
  Exchange exchange_;
  std::string directory_;
  std::string current_;
  NodeRef metadata_;
  bool metadata_has_declaration_ = true;
  NodeRef catalogue_;
  std::string registry_text_;
  NodeRef registry_root_;  // What `registry_text_` says; nothing when it is not well-formed.
  int last_guid_ = 0;
  std::vector<std::string> messages_;
};

}  // namespace kvdm::model
