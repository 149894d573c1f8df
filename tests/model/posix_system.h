// The component on the services of a POSIX system.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/code_page.h"
#include "tests/model/system.h"
#include "tests/temp_folder.h"

namespace kvdm::model {

// Files and registry are the operating system's, in a temporary folder.
class PosixSystem : public System {
 public:
  explicit PosixSystem(CodePage code_page = CodePage::kUtf8);
  ~PosixSystem() override;
  std::vector<std::string> Tree() override;

 private:
  TempFolder folder_;
  std::filesystem::path old_current_folder_;
};

}  // namespace kvdm::model
