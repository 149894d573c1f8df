// Stored project: a project and the catalogue as they are stored, for commands that change them
// without the component, which would make a working directory that is missing.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "host/command.h"
#include "host/documents.h"

namespace kvdm {

class StoredProject {
 public:
  // Reads both; with kChange, which does not change the catalogue, not that. Failure kUnreadable
  // when one can't be read.
  StoredProject(std::filesystem::path file, Access access, Output& out);

  [[nodiscard]] const std::filesystem::path& File() const { return file_; }
  [[nodiscard]] const Platform& GetPlatform() const { return services_.platform; }
  [[nodiscard]] const Holdings& Stored() const { return stored_; }
  [[nodiscard]] const os::Drives& Drives() const { return drives_; }

  // The working directory of its settings, without a separator at its end; "" for none.
  [[nodiscard]] std::string WorkingDirectory() const;

  // Failure kUnsafe when the working directory of `wanted` is another project's, unless what lies
  // outside is allowed.
  void RequireOwn(const Holdings& wanted, const Allowed& allowed) const;

  // Stores the project and the catalogue as one change, which is recorded in the working directory
  // that the project then has. That becomes its own, and the recovery side-cars follow. Failures as
  // of RequireOwn and Recording::Store.
  void Save(const Holdings& wanted, const Invocation& invocation);
  // The same of its drives alone. Where its working directory is not there nothing is recorded.
  void SaveDrives(const os::Drives& drives, const Invocation& invocation);

 private:
  void Store(const Documents& wanted, const std::string& directory, const Invocation& invocation);

  std::filesystem::path file_;
  Documents documents_;
  os::Drives drives_;
  Holdings stored_;
  Services services_;
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
