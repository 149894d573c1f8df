#include "tests/contract/implementations.h"

#include "platform/memory/memory_platform.h"
#include "platform/windows/windows_platform.h"
#include "platform/windows/windows_registry.h"
#include "tests/platform/windows/com_environment.h"
#include "tests/platform/windows/registry_sandbox.h"

namespace kvdm {
namespace {

class SandboxWorld final : public RegistryWorld {
 public:
  std::unique_ptr<Registry> Open(CodePage /*page*/) override {
    return MakeWindowsRegistry(std::make_shared<RecordingLog>());
  }

 private:
  RegistrySandbox sandbox_;
};

}  // namespace

std::string SystemName() { return "Windows"; }

Platform SystemPlatform(const CallbackMessageBox::Callback& show) {
  return MakeWindowsPlatform({.message_box = show});
}

RegistryMaker SystemRegistry() {
  const bool is_utf8 = ::GetACP() == CP_UTF8;
  return {.name = "Windows",
          .pages = {is_utf8 ? CodePage::kUtf8 : CodePage::kWindows1252},
          .folds_every_letter = true,
          .make = [] { return std::make_unique<SandboxWorld>(); }};
}

}  // namespace kvdm
