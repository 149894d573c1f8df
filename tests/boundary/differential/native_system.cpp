// The component's own code, on the services of a POSIX system.
#include "tests/boundary/differential/system_under_test.h"
#include "tests/model/posix_system.h"

namespace kvdm::differential {

std::unique_ptr<model::System> MakeSystem() {
  auto system = std::make_unique<model::PosixSystem>(CodePage::kWindows1252);
  std::filesystem::current_path("../D");
  return system;
}

}  // namespace kvdm::differential
