// Stored project: a project and the catalogue as they are stored, for commands that change them
// without the component, which would make a working directory that is missing.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "host/output.h"
#include "host/project.h"
#include "host/services.h"
#include "safety/rebase.h"

namespace kvdm {

class StoredProject {
 public:
  // Reads both. Failure kUnreadable when one can't be read.
  StoredProject(std::filesystem::path file, Access access, Output& out);

  [[nodiscard]] const std::filesystem::path& File() const { return file_; }
  [[nodiscard]] const Platform& GetPlatform() const { return services_.platform; }
  [[nodiscard]] const Holdings& Stored() const { return stored_; }
  [[nodiscard]] Project& GetProject() { return project_; }

  // The working directory of its settings, without a separator at its end; "" for none.
  [[nodiscard]] std::string WorkingDirectory() const;

  // Stores the project, then the catalogue as a difference. Failure kRefused when one is refused;
  // when it is the catalogue, the sentence says that the command `rest` does the rest. The recovery
  // side-cars follow.
  void Save(const Holdings& wanted, std::string_view rest);

 private:
  void SaveCatalogue(const std::string& base, std::string_view rest);

  std::filesystem::path file_;
  Project project_;
  Services services_;
  Holdings stored_;
};

// A folder that a person names, in the component's form without a separator at its end: a path that
// names a drive is in that form already where the system has no drives.
[[nodiscard]] std::string ComponentFolder(const std::string& given);

// A path of the component as the command line takes it, quoted where it must be.
[[nodiscard]] std::string Quoted(std::string_view path);

// The command that mends a project whose working directory is gone, when one that fits stands
// beside the project file; nothing otherwise, and when that can't be told.
[[nodiscard]] std::optional<std::string> ProposedRebase(const std::filesystem::path& file,
                                                        const Project& project);

}  // namespace kvdm
