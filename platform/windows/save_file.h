// Replacing a file as a whole. Errors are std::system_error.
#pragma once

#include <string>
#include <string_view>

#include "platform/windows/file_handle.h"

namespace kvdm {

// Writes `bytes` to a new file beside `path`, a path as the system takes it, reads them again, and
// lets it take that place in one step, with the attributes and access rights of what is there.
// That stays as `previous`, unless that is "". After a failure the file is as before.
void SaveFile(const std::wstring& path, std::string_view bytes, const std::wstring& previous = {});

// What is left to read of an open file, but no more than `most` bytes.
[[nodiscard]] std::string ReadAll(const FileHandle& file, std::size_t most = std::string::npos);

}  // namespace kvdm
