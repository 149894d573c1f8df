// Checks of arguments that are to be stored. What the documents could not give back as it was given
// is refused here, before anything is opened or changed.
#pragma once

#include <cstddef>
#include <string_view>

namespace kvdm {

// The longest name that becomes a folder's or a file's, in bytes. File systems take 255; the rest
// is for the number that makes a name unique, for an extension, and for the side-car's after that.
inline constexpr std::size_t kLongestFolderName = 240;

// A check of an argument. `what` names the text in sentences, such as "NAME". All of them throw
// Failure kUsage that says what is wrong with it and what to do.
using ArgumentCheck = void (*)(std::string_view what, std::string_view text);

// For a text without the characters that XML can't hold: control characters other than TAB and line
// ends, U+FFFE, U+FFFF, and bytes that are not UTF-8. A document would keep U+FFFD in their place.
void RequireStorable(std::string_view what, std::string_view text);

// For what items, properties and parameters are looked up by: not empty, without double quotes.
void RequireKey(std::string_view what, std::string_view text);

// For a key that names a new folder or file too: without the characters that those can't have, of
// more than dots and blanks, and not too long.
void RequireNewName(std::string_view what, std::string_view name);

// The same for a study area, of which the component keeps one name to itself.
void RequireNewAreaName(std::string_view what, std::string_view name);
void RequireAreaKey(std::string_view what, std::string_view name);

// Failure kUnsafe for a name that Windows keeps for a device, or from which it would cut something.
void RequirePortableName(std::string_view name);

// Failure kUnsafe for a name that differs from `other` in nothing but letter case.
void RequireOtherThanInCase(std::string_view name, std::string_view other);

// For a name that can be a folder's, and leads to no folder elsewhere.
void RequireFolderName(std::string_view name);

// The number of a row that a list shows, from 1. Failure kUsage for another text.
[[nodiscard]] int ListNumber(std::string_view text);

}  // namespace kvdm
