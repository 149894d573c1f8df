#include "host/program_fields.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <system_error>

#include "safety/times.h"

namespace kvdm {
namespace {

constexpr std::array<std::string_view, 2> kFolders = {"folder", "working_directory"};
constexpr std::array<std::string_view, 2> kFiles = {"layer_file", "path"};

bool IsOneOf(const std::string& name, const std::array<std::string_view, 2>& names) {
  return std::ranges::find(names, name) != names.end();
}

// Nothing when that can't be told.
Field IsThere(const os::Drives& drives, const std::string& path, bool is_folder) {
  try {
    const auto native = os::NativePlace(drives, path);
    if (!native && !path.substr(0, 2).ends_with(':')) return {};
    if (!native) return false;  // Its drive is not there.
    return is_folder ? os::FindFolder(drives, path).has_value() : os::Exists(*native);
  } catch (const std::system_error&) {
    return {};
  }
}

}  // namespace

Record ForPrograms(const Record& fields, const os::Drives& drives) {
  Record result;
  bool has_exists = false;
  for (const auto& [name, field] : fields) {
    result.emplace_back(name, field);
    const auto* text = std::get_if<std::string>(&field);
    if (text == nullptr) continue;
    if (name == "created") {
      const auto iso = IsoTime(*text);
      result.emplace_back("created_iso", iso ? Field(*iso) : Field());
    }
    const bool is_folder = IsOneOf(name, kFolders);
    if (!is_folder && !IsOneOf(name, kFiles)) continue;
    const auto native = os::NativePlace(drives, *text);
    if (!native && name == "path") continue;  // Others call something else a path.
    result.emplace_back(name + "_native", native ? Field(os::ToText(*native)) : Field());
    if (name == "working_directory" || has_exists) continue;
    result.emplace_back("exists", IsThere(drives, *text, is_folder));
    has_exists = true;
  }
  return result;
}

}  // namespace kvdm
