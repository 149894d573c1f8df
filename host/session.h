// A command's work on one project.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/hosted_component.h"
#include "host/output.h"
#include "host/project.h"
#include "host/recording.h"

namespace kvdm {

// Holds off other processes that change the project, and with kChangeRegistry those that change the
// study areas, which all projects share. Where there can be no lock for these, what guards the
// registry itself must do.
class ChangeLock {
 public:
  // Failure kRefused when another process keeps them for long, or the project can't be locked.
  ChangeLock(const std::filesystem::path& project_file, Access access);

 private:
  std::shared_ptr<void> project_;
  std::shared_ptr<void> registry_;
};

// What people allow although it may do harm.
struct Allowed {
  bool foreign = false;  // to work with what belongs to another working directory
  bool outside = false;  // to change what lies outside, and a working directory of another project
};

class Session {
 public:
  // Opens a project file and starts the component.
  Session(const std::filesystem::path& file, Access access, const Allowed& allowed, Output& out);
  // Runs what UnlessSaved was given, unless the session was saved, and takes back what was recorded
  // and not saved. Failures in that are ignored or told.
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  [[nodiscard]] const std::filesystem::path& File() const { return file_; }
  [[nodiscard]] const Project& GetProject() const { return project_; }
  [[nodiscard]] HostedComponent& Component() { return component_; }
  [[nodiscard]] IKVDataManager& Manager() { return component_.Manager(); }
  [[nodiscard]] Place GetPlace();

  // From now on what changes is recorded, as what a command does; `recorded`, if there is any, gets
  // the number of each change that is stored. Failure kRefused.
  void Record(const std::vector<std::string>& command, std::vector<int>* recorded = nullptr);
  // Only while that is so.
  [[nodiscard]] Recording& GetRecording() { return *recording_; }

  [[nodiscard]] const Allowed& GetAllowed() const { return allowed_; }

  // How often a text stands in a list of names or identifiers of the component's, which `make`
  // asks for the first time. `list` tells lists apart.
  [[nodiscard]] int CountIn(const std::string& list, const std::function<NameListRef()>& make,
                            const std::string& text);
  // Names or identifiers may have changed: lists are to be asked for again.
  void ForgetNames() { counts_.clear(); }

  // What the state has by now is saved, but is no change that is recorded.
  void LeaveStateUnrecorded() { component_.SaveStateTo(project_); }

  // Saves what was changed; True when the project file was written.
  bool Save();
  // Saves a state of stored documents in place of the component's, and moves folders, as
  // Recording::Store does. The component does not know of it. Failure kConflict when the project
  // would be without its working directory.
  void Store(const Documents& stored, const Documents& wanted, const std::vector<Move>& moves = {},
             int undoes = 0);
  // Whether Save or Store succeeded.
  [[nodiscard]] bool IsSaved() const { return is_saved_; }
  // Has `undo` called when the session ends unsaved: for what a command makes outside the project.
  void UnlessSaved(std::function<void()> undo) { undos_.push_back(std::move(undo)); }

 private:
  bool Write();
  void KeepItems(const std::string& before, const std::string& now);

  std::filesystem::path file_;
  Project project_;
  HostedComponent component_;
  Allowed allowed_;
  std::unique_ptr<Recording> recording_;
  std::map<std::string, std::unordered_map<std::string, int>> counts_;
  bool is_saved_ = false;
  std::vector<std::function<void()>> undos_;
};

}  // namespace kvdm
