// What the host says and does on POSIX systems only.
#include "host/commands/groups.h"
#include "host/manual.h"

namespace kvdm {

void AddSystemCommands(const CommandGroup&) {}

SystemManual ThisSystemsManual() {
  return {R"(.TP
.I ~/.local/share/kvdm/registry.db
The study areas, which all projects share, and the aliases.
)",
          R"(.TP
.B KVDM_REGISTRY
The file to use in place of
.IR registry.db .
.TP
.B XDG_DATA_HOME
The folder to use in place of
.IR ~/.local/share .
)"};
}

}  // namespace kvdm
