// Hidden and system attributes of files on file systems that have only permissions: the extended
// attribute "user.DOSATTRIB", which file servers and other programs share.
#pragma once

#include <string>
#include <string_view>

namespace kvdm {

// The FileAttribute bits in a value of the extended attribute, which is a text such as "0x12" or a
// small record. 0 for anything else.
[[nodiscard]] unsigned ParseDosAttributes(std::string_view value);

// The record that holds `attributes`.
[[nodiscard]] std::string FormatDosAttributes(unsigned attributes);

// The attributes of an open file or folder; 0 when it has none.
[[nodiscard]] unsigned ReadDosAttributes(int file);

// Sets the attributes of an open file or folder. On a file system without extended attributes
// nothing can be kept, and nothing happens. Throws std::system_error when the system refuses.
void WriteDosAttributes(int file, unsigned attributes);

}  // namespace kvdm
