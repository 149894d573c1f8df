// Splits a file path into folder, name and extension.
#pragma once

#include <string>

#include <kvdm/datamanager/study_areas.h>

namespace kvdm {

class KVFileInfo final : public IKVFileInfo {
 public:
  std::string ParentDirPath() override;
  std::string FileName() override;
  std::string FileNameExtension() override;
  std::string FullPath() override { return full_path_; }
  void SetFullPath(std::string_view path) override { full_path_ = path; }

 private:
  // What follows the last "\": "" when the path ends in one. Run-time error 5 for an empty path.
  [[nodiscard]] std::string_view LastPathPart() const;

  std::string full_path_;
};

}  // namespace kvdm
