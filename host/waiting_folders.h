// Recovery of folders that an earlier kvdm set aside while it deleted their items, and that was
// ended before it was through.
#pragma once

#include "host/session.h"

namespace kvdm {

// Tells where such folders of the project wait.
void TellOfWaitingFolders(Session& session);

// Moves them back to their places and tells so. What can't be moved stays as it is.
void BringBackWaitingFolders(Session& session);

}  // namespace kvdm
