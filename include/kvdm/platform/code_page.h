/// @file
/// ANSI code page, in which the registry and message boxes hold text.
#pragma once

namespace kvdm {

/// The code pages that a platform may take for the ANSI code page.
enum class CodePage {
  kUtf8,         ///< holds every character
  kWindows1252,  ///< Western European; other characters are stored and shown as "?"
};

}  // namespace kvdm
