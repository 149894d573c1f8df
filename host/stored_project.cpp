#include "host/stored_project.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <system_error>
#include <utility>

#include <kvdm/platform/catalogue_update.h>

#include "host/os.h"
#include "host/project_file.h"
#include "safety/item_files.h"
#include "util/names.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

constexpr RegistryRoot kRoot = RegistryRoot::kLocalMachine;

Holdings HoldingsOf(const Project& project, const Services& services) {
  const bool has_text = !project.values.empty() && project.values.front().IsText();
  std::string catalogue = ToText(
      ReadRegistryString(*services.registry, kRoot, kRegistryKey, kStudyAreaCollectionValue));
  if (const auto& unread = services.registry->Unread()) {
    throw Failure(ExitCode::kUnreadable, RegistrySentence(*unread));
  }
  return {has_text ? ToText(project.values.front()) : "", project.settings, project.state,
          std::move(catalogue)};
}

std::string WithoutEnd(std::string path) {
  while (path.ends_with('\\') || path.ends_with('/')) path.pop_back();
  return path;
}

struct Parts {
  std::string above;
  std::string name;
};

Parts SplitLast(const std::string& path) {
  const auto separator = path.find_last_of("\\/");
  if (separator == path.npos) return {"", path};
  return {path.substr(0, separator), path.substr(separator + 1)};
}

// Whether a folder looks like a working directory.
bool IsWorkingDirectory(const os::Drives& drives, const std::string& folder) {
  return std::ranges::any_of(
      std::to_array({sDefaultDirNames::kCustLayers, sDefaultDirNames::kStoreLayers,
                     sDefaultDirNames::kStudyAreas, sDefaultDirNames::kAnalyses}),
      [&](const char* name) { return os::FindFolder(drives, folder + "\\" + name).has_value(); });
}

std::string DirectoryIn(const PropertySetMap::Properties& settings) {
  const auto found = settings.find(kWorkingDirectorySetting);
  const bool is_text = found != settings.end() && found->second.IsText();
  return is_text ? WithoutEnd(ToText(found->second)) : "";
}

}  // namespace

StoredProject::StoredProject(fs::path file, Access access, Output& out)
    : file_(std::move(file)),
      project_(ReadProjectFile(file_)),
      services_(MakeServices(project_.drives, access, out)),
      stored_(HoldingsOf(project_, services_)) {}

std::string StoredProject::WorkingDirectory() const { return DirectoryIn(stored_.settings); }

void StoredProject::Save(const Holdings& wanted, std::string_view rest) {
  if (!wanted.metadata.empty()) project_.values.front() = wanted.metadata;
  project_.settings = wanted.settings;
  project_.state = wanted.state;
  WriteProjectFile(file_, project_);
  if (wanted.catalogue == stored_.catalogue) return;
  const auto update = MakeCatalogueUpdate(services_.platform, stored_.catalogue, wanted.catalogue);
  if (services_.registry->Update(kRoot, kRegistryKey, kStudyAreaCollectionValue, *update)) return;
  throw Failure(ExitCode::kRefused,
                fmt::format("The project is saved, but the list of study areas is not. {} '{}' "
                            "does the rest then.",
                            RegistrySentence(*services_.registry->Refused()), rest));
}

std::string ComponentFolder(const std::string& given) {
  const bool names_drive = given.size() > 1 && given[1] == ':' &&
                           std::isalpha(static_cast<unsigned char>(given[0])) != 0;
  const fs::path path = os::ToPath(given);
  if (names_drive && !path.has_root_name()) return WithoutEnd(given);
  return WithoutEnd(os::ComponentPath(os::Absolute(path)));
}

std::string Quoted(std::string_view path) {
  const bool has_drives = fs::path("D:\\").has_root_name();
  const std::string native = os::NativePath(path);
  const std::string_view plain = has_drives ? "\\:._-" : "/._-";
  const auto is_plain = [&](unsigned char character) {
    return std::isalnum(character) != 0 || plain.find(static_cast<char>(character)) != plain.npos;
  };
  if (std::ranges::all_of(native, is_plain)) return native;
  return has_drives ? fmt::format("\"{}\"", native) : fmt::format("'{}'", native);
}

std::optional<std::string> ProposedRebase(const fs::path& file, const Project& project) {
  const std::string gone = DirectoryIn(project.settings);
  const auto [above, name] = SplitLast(gone);
  const std::string beside = os::ComponentPath(file.parent_path());
  const std::string candidate = beside + "\\" + name;
  try {
    if (above.empty() || os::FindFolder(project.drives, gone) ||
        !IsWorkingDirectory(project.drives, candidate)) {
      return std::nullopt;
    }
    // The whole folder of the project was moved, unless the old one is still there.
    const bool is_whole = !os::FindFolder(project.drives, above);
    return fmt::format("kvdm project rebase {} {}", Quoted(is_whole ? above : gone),
                       Quoted(is_whole ? beside : candidate));
  } catch (const std::system_error&) {
    return std::nullopt;
  }
}

}  // namespace kvdm
