// What the host says on Windows only.
#include "host/manual.h"

namespace kvdm {

SystemManual ThisSystemsManual() {
  return {R"(.TP
.I HKEY_LOCAL_MACHINE\eSoftware\eVelk\eKelvaro
The registry key of the study areas, which all projects share, and of the aliases.
)",
          R"(.TP
.B LOCALAPPDATA
The folder of
.IR kvdm\eregistry.lock ,
which is locked while a command changes them.
)"};
}

}  // namespace kvdm
