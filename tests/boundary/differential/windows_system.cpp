// The component's DLL, on the services of Windows.
#include <kvdm/platform/portable/portable_services.h>

#include "platform/windows/windows_file_system.h"
#include "platform/windows/windows_registry.h"
#include "tests/boundary/client/disk.h"
#include "tests/boundary/client/dll.h"
#include "tests/boundary/client/pinned_system.h"
#include "tests/boundary/client/sibling_classes.h"
#include "tests/boundary/differential/system_under_test.h"
#include "tests/platform/windows/registry_sandbox.h"

namespace kvdm::differential {
namespace {

class DllSystem : public model::System {
 public:
  // The services are those of the test itself; the DLL brings its own.
  DllSystem() {
    Platform services = Memory().Bundle();
    services.files = MakeWindowsFileSystem();
    services.registry = MakeWindowsRegistry(services.log);
    SetPlatform(services);
  }

  std::vector<std::string> Tree() override {
    std::vector<std::string> tree;
    for (const std::string drive : {"C:\\", "D:\\"}) {
      for (const auto& path : disk_.Tree(drive)) tree.push_back(drive + path);
    }
    return tree;
  }

 private:
  client::Disk disk_;
  client::SiblingClasses siblings_{[](const std::string& number) {
    return MakePortableSiblings()->CreateResourceFinder()->FindString(number);
  }};
  RegistrySandbox registry_;
  client::PinnedSystem pinned_{[this](auto text, auto caption, int style) {
    Memory().box->Show(text, caption, static_cast<MessageStyle>(style));
  }};
};

}  // namespace

std::unique_ptr<model::System> MakeSystem() {
  static const client::Apartment apartment;
  return std::make_unique<DllSystem>();
}

}  // namespace kvdm::differential
