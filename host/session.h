// A command's work on one project.
#pragma once

#include <filesystem>
#include <memory>

#include "host/hosted_component.h"
#include "host/output.h"
#include "host/project.h"

namespace kvdm {

// Holds off other processes that change the project or the study areas, which all projects share.
class ChangeLock {
 public:
  // Failure kRefused when another process keeps them for long.
  explicit ChangeLock(const std::filesystem::path& project_file);

 private:
  std::shared_ptr<void> project_;
  std::shared_ptr<void> registry_;
};

class Session {
 public:
  // Opens a project file and starts the component.
  Session(const std::filesystem::path& file, Output& out);

  [[nodiscard]] const std::filesystem::path& File() const { return file_; }
  [[nodiscard]] const Project& GetProject() const { return project_; }
  [[nodiscard]] HostedComponent& Component() { return component_; }
  [[nodiscard]] IKVDataManager& Manager() { return component_.Manager(); }

  // Saves what was changed; True when the project file was written.
  bool Save();

 private:
  std::filesystem::path file_;
  Project project_;
  HostedComponent component_;
};

}  // namespace kvdm
