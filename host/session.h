// A command's work on one project.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "host/hosted_component.h"
#include "host/output.h"
#include "host/project.h"

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

class Session {
 public:
  // Opens a project file and starts the component.
  Session(const std::filesystem::path& file, Access access, Output& out);
  // Runs what UnlessSaved was given, unless the session was saved. Failures in that are ignored.
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  [[nodiscard]] const std::filesystem::path& File() const { return file_; }
  [[nodiscard]] const Project& GetProject() const { return project_; }
  [[nodiscard]] HostedComponent& Component() { return component_; }
  [[nodiscard]] IKVDataManager& Manager() { return component_.Manager(); }

  // Saves what was changed; True when the project file was written.
  bool Save();
  // Whether Save succeeded.
  [[nodiscard]] bool IsSaved() const { return is_saved_; }
  // Has `undo` called when the session ends unsaved: for what a command makes outside the project.
  void UnlessSaved(std::function<void()> undo) { undos_.push_back(std::move(undo)); }

 private:
  std::filesystem::path file_;
  Project project_;
  HostedComponent component_;
  bool is_saved_ = false;
  std::vector<std::function<void()>> undos_;
};

}  // namespace kvdm
