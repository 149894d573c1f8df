#include "tests/contract/implementations.h"

#include <kvdm/platform/posix/posix_platform.h>

#include "platform/memory/memory_platform.h"
#include "platform/posix/sqlite_registry.h"
#include "tests/temp_folder.h"

namespace kvdm {
namespace {

class SqliteWorld final : public RegistryWorld {
 public:
  std::unique_ptr<Registry> Open(CodePage page) override {
    return std::make_unique<SqliteRegistry>(
        SqliteRegistryOptions{folder_.Path("deep/registry.db"), page},
        std::make_shared<RecordingLog>());
  }

 private:
  TempFolder folder_;
};

}  // namespace

std::string SystemName() { return "Posix"; }

Platform SystemPlatform(const CallbackMessageBox::Callback& show) {
  return MakePosixPlatform({.message_box = show});
}

RegistryMaker SystemRegistry() {
  return {.name = "Sqlite", .pages = {CodePage::kUtf8, CodePage::kWindows1252}, .make = [] {
            return std::make_unique<SqliteWorld>();
          }};
}

}  // namespace kvdm
