// The component, created and started as an application does it.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/datamanager/data_manager.h>
#include <kvdm/platform/portable/properties_host.h>

#include "host/output.h"
#include "host/project.h"
#include "host/services.h"
#include "host/watched_files.h"
#include "safety/read_only_files.h"

namespace kvdm {

class AreaRegistry;
struct DocumentNode;
class KVDataManager;

// Why the component does not take `text` as a document, as a sentence about `what` that names the
// limit that it is over; "" when it does.
[[nodiscard]] std::string DocumentProblem(XmlParser& parser, std::string_view what,
                                          std::string_view text);

class HostedComponent {
 public:
  // Starts the component with the project's settings and state, and loads the project's values into
  // it. Only with kMake does the start make a working directory that is missing; what is in the
  // temporary folder stays. Failure kUnreadable for values that it can't load.
  HostedComponent(const Project& project, Access access, Output& out);

  [[nodiscard]] IKVDataManager& Manager();
  // The data manager's own registry of study areas and layers, of which its interface shows
  // nothing. Its failures are messages.
  [[nodiscard]] AreaRegistry& RegisteredItems();
  [[nodiscard]] const Services& GetServices() const { return services_; }
  // Grows with each change of its documents.
  [[nodiscard]] std::uint64_t Changes() const;
  // Has `note` called with each folder that the component makes.
  void OnMadeFolder(std::function<void(std::string_view)> note);

  // Whether the working directory of the settings was there before the start; nothing when that
  // could not be told.
  [[nodiscard]] const std::optional<bool>& WorkingDirectoryWasThere() const {
    return working_directory_was_there_;
  }
  // A sentence about the working directory when the component can't work in it; "" when it can.
  [[nodiscard]] std::string WorkingDirectoryProblem();
  // What can be done about that, as the sentence after it, which begins with a blank.
  void SetWayOut(std::string sentence) { way_out_ = std::move(sentence); }
  // Failure kRefused with that sentence.
  void RequireWorkingDirectory();

  // Failure kUnreadable when something of the registry could not be read.
  void RequireRegistry() const;
  // The same when a study area is open: then the registry says where its files are.
  void RequireRegistryForStudyArea();
  // What is wrong with the list of study areas in a registry that can be read, and what to do about
  // it, in sentences; "" when nothing is.
  [[nodiscard]] std::string CatalogueProblem() const;
  // What was kept of the list of study areas; nothing when the registry can't be read.
  [[nodiscard]] std::vector<KeptValue> KeptStudyAreas() const;

  // Changes the metadata document itself, where the component has no operation for that, and loads
  // it again. Failure kRefused or kUnreadable when that can't be done.
  void EditMetadata(const std::function<void(DocumentNode& root)>& edit, Output& out);

  // A text of the state that is saved with the project; "" when it has none of the name.
  [[nodiscard]] std::string State(std::string_view name);
  void SetState(std::string_view name, std::string_view text);

  [[nodiscard]] std::string CurrentStudyArea();
  // The identifier that it had when it was opened; "" when that is not known.
  [[nodiscard]] std::string CurrentStudyAreaGuid();
  void SetCurrentStudyArea(std::string_view name, std::string_view guid);

  void SaveStateTo(Project& project) const;
  // Saves the component: brings the values and properties of `project` up to date.
  void SaveTo(Project& project);

 private:
  void Load(const std::vector<Value>& values, Output& out);
  // What the component saves.
  [[nodiscard]] std::vector<Value> Saved();

  Services services_;
  std::shared_ptr<ReadOnlyFiles> guarded_files_;
  std::shared_ptr<WatchedFiles> files_;
  std::shared_ptr<PropertySetMap> state_;
  std::shared_ptr<PropertySetMap> settings_;
  std::shared_ptr<Host> host_;
  std::shared_ptr<KVDataManager> manager_;
  std::optional<bool> working_directory_was_there_;
  std::string way_out_;
};

}  // namespace kvdm
