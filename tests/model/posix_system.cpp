#include "tests/model/posix_system.h"

#include <algorithm>

#include <kvdm/platform/posix/posix_platform.h>

namespace kvdm::model {
namespace {

// The entries of a drive in `folder`.
void AddTree(const std::filesystem::path& folder, const std::string& drive,
             std::vector<std::string>& tree) {
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    std::string path = std::filesystem::relative(entry.path(), folder).string();
    std::ranges::replace(path, '/', '\\');
    tree.push_back(drive + "\\" + path + (entry.is_directory() ? "\\" : ""));
  }
}

}  // namespace

PosixSystem::PosixSystem(CodePage code_page)
    : old_current_folder_(std::filesystem::current_path()) {
  PosixOptions options{.code_page = code_page};
  for (const char drive : {'C', 'D'}) {
    options.drives[drive] = folder_.Path(std::string(1, drive));
    std::filesystem::create_directory(options.drives[drive]);
  }
  options.registry_path = folder_.Path("registry.db");
  const Platform posix = MakePosixPlatform(options);
  Platform mixed = Memory().Bundle();
  mixed.files = posix.files;
  mixed.registry = posix.registry;
  SetPlatform(mixed);
  std::filesystem::current_path(options.drives['C']);
}

PosixSystem::~PosixSystem() { std::filesystem::current_path(old_current_folder_); }

std::vector<std::string> PosixSystem::Tree() {
  std::vector<std::string> tree;
  for (const char drive : {'C', 'D'}) {
    AddTree(folder_.Path(std::string(1, drive)), std::string{drive, ':'}, tree);
  }
  std::ranges::sort(tree);
  return tree;
}

}  // namespace kvdm::model
