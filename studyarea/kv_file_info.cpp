#include "studyarea/kv_file_info.h"

namespace kvdm {
namespace {

// What follows the last dot; "" without a dot, and when nothing follows it.
std::string_view ExtensionOf(std::string_view name) {
  const auto dot = name.rfind('.');
  if (dot == std::string_view::npos) return {};
  if (dot + 1 < name.size()) return name.substr(dot + 1);
  // An empty part at the end does not count, the one before it is the last: "a.b." has the
  // extension "b".
  const auto parts = name.substr(0, dot);
  const auto previous_dot = parts.rfind('.');
  return previous_dot == std::string_view::npos ? std::string_view()
                                                : parts.substr(previous_dot + 1);
}

}  // namespace

std::string_view KVFileInfo::LastPathPart() const {
  if (full_path_.empty()) throw RuntimeError(kInvalidCall);
  return std::string_view(full_path_).substr(full_path_.rfind('\\') + 1);
}

std::string KVFileInfo::ParentDirPath() {
  return full_path_.substr(0, full_path_.size() - LastPathPart().size());
}

std::string KVFileInfo::FileNameExtension() { return std::string(ExtensionOf(LastPathPart())); }

std::string KVFileInfo::FileName() {
  const auto name = LastPathPart();
  const auto extension = ExtensionOf(name);
  return std::string(extension.empty() ? name : name.substr(0, name.size() - extension.size() - 1));
}

}  // namespace kvdm
