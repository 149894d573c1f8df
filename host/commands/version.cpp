// kvdm version
#include <fmt/format.h>

#include "host/commands/groups.h"
#include "host/project.h"

namespace kvdm {
namespace {

class Version : public Command {
 public:
  explicit Version(Arguments) {}

  void Execute(const Invocation& invocation) override {
    invocation.out.Done({{"version", KVDM_VERSION}, {"project_version", kProjectVersion}},
                        fmt::format("kvdm {}", KVDM_VERSION));
  }
};

}  // namespace

void AddVersionCommand(const CommandGroup& root) {
  root.Add<Version>("version", "Show the version", "kvdm version");
}

}  // namespace kvdm
