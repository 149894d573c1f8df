// The ANSI code page, in which the registry and message boxes hold text.
#pragma once

namespace kvdm {

enum class CodePage { kUtf8, kWindows1252 };

}  // namespace kvdm
