// Files that a replacement left behind when its process was killed.
#pragma once

namespace kvdm {

// Deletes, in an open folder, the hidden files with the name of a temporary file of ours that
// nobody is writing any more. What can't be deleted stays. Errors are std::system_error.
void ClearLeftovers(int folder);

}  // namespace kvdm
