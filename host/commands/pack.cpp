// kvdm project pack and unpack: a project as one file, for another place or another person.
#include "safety/pack.h"

#include <fmt/format.h>

#include <system_error>

#include "host/commands/groups.h"
#include "host/os.h"
#include "host/ownership.h"
#include "host/project_file.h"
#include "host/stored_project.h"
#include "safety/items.h"
#include "util/guard.h"
#include "util/names.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

// Paths of layer files that are not in the working directory, and so not in the archive.
std::vector<Record> FilesOutside(const Platform& platform, const Holdings& holdings,
                                 const std::string& working_directory) {
  std::vector<Record> rows;
  const auto tree = ReadDocumentTree(*platform.xml_parser, holdings.metadata);
  if (!tree || tree->Root() == nullptr) return rows;
  const PathPrefix inside(working_directory, "");
  for (const StoredItem& item : ItemsIn(*tree->Root())) {
    const char* attribute = item.element->name == "DATAITEM" ? "FILE" : "LAYERFILE";
    const std::string file = item.element->Attribute(attribute);
    const bool is_full = file.find_first_of("\\/") != file.npos;
    if (is_full && !inside.Replaced(file)) {
      rows.push_back({{"name", ItemName(*item.element)}, {"layer_file", file}});
    }
  }
  return rows;
}

class ProjectPack : public Command {
 public:
  explicit ProjectPack(Arguments arguments) {
    arguments.Required("OUT", archive_, "The archive to write, such as Retail.zip");
  }

  void Execute(const Invocation& invocation) override {
    const fs::path file = FindProjectFile(invocation.project);
    const fs::path archive = os::Absolute(os::ToPath(archive_));
    const ChangeLock lock(file, Access::kChange);
    StoredProject project(file, Access::kRead, invocation.out);
    const std::string directory = project.WorkingDirectory();
    const fs::path place = PlaceOf(project, directory);
    if (os::Exists(archive)) {
      throw Failure(ExitCode::kConflict,
                    fmt::format("There is a {} already. Name another file.", os::ToText(archive)));
    }
    RequireOutside(archive, place);
    const PackResult result =
        Packed(project, {file, place, directory, project.Stored().catalogue}, archive);
    invocation.out.Done({{"archive", os::ToText(archive)},
                         {"files", result.files},
                         {"bytes", result.bytes},
                         {"left_out", result.left_out}},
                        Sentence(archive, result));
    invocation.out.Section("outside",
                           FilesOutside(project.GetPlatform(), project.Stored(), directory));
  }

 private:
  static fs::path PlaceOf(StoredProject& project, const std::string& directory) {
    const auto place = os::NativePlace(project.Drives(), directory);
    if (place && fs::is_directory(*place)) return *place;
    throw Failure(
        ExitCode::kNotFound,
        fmt::format("The working directory {} is not there. 'kvdm status' tells more.", directory));
  }

  static void RequireOutside(const fs::path& archive, const fs::path& place) {
    const auto inside = archive.lexically_relative(place);
    if (inside.empty() || *inside.begin() == "..") return;
    throw Failure(ExitCode::kUsage,
                  "The archive can't be in the working directory that goes into it. Name a file "
                  "elsewhere.");
  }

  static PackResult Packed(StoredProject& project, const PackContent& content,
                           const fs::path& archive) {
    try {
      return Pack(project.GetPlatform(), content, archive);
    } catch (const std::system_error& error) {
      throw Failure(ExitCode::kRefused,
                    fmt::format("{} could not be written: {}.", os::ToText(archive), error.what()));
    }
  }

  static std::string Sentence(const fs::path& archive, const PackResult& result) {
    const std::string links =
        result.left_out == 0 ? "" : fmt::format(" {} links were left out.", result.left_out);
    return fmt::format("Packed the project with {} files of its working directory into {}.{}",
                       result.files, os::ToText(archive), links);
  }

  std::string archive_;
};

class ProjectUnpack : public Command {
 public:
  explicit ProjectUnpack(Arguments arguments) {
    arguments.Required("IN", archive_, "The archive that 'kvdm project pack' wrote");
    arguments.Optional("DIR", folder_, "The folder to make; without it the archive's name here");
  }

  void Execute(const Invocation& invocation) override {
    const fs::path archive = os::Absolute(os::ToPath(archive_));
    const fs::path folder = os::Absolute(folder_ ? os::ToPath(*folder_) : archive.stem());
    if (os::Exists(folder)) {
      throw Failure(ExitCode::kConflict, fmt::format("There is a {} already. Name a folder that is "
                                                     "not there yet.",
                                                     os::ToText(folder)));
    }
    const Services services = MakeServices({}, Access::kRead, invocation.out);
    const PackManifest manifest = Unpacked(services.platform, archive, folder);
    try {
      SetUp(manifest, folder, invocation);
    } catch (const Unconfirmed&) {
      throw;
    } catch (const std::exception&) {
      guard::Skipping(nullptr, [&] { os::DeleteTree(folder); });
      throw;
    }
  }

 private:
  static PackManifest Unpacked(const Platform& platform, const fs::path& archive,
                               const fs::path& folder) {
    try {
      return Unpack(platform, archive, folder);
    } catch (const Failure& failure) {
      throw Failure(failure.code(), fmt::format("The archive {} can't be unpacked. {}",
                                                os::ToText(archive), failure.what()));
    } catch (const std::system_error& error) {
      throw Failure(ExitCode::kRefused, fmt::format("The archive {} can't be unpacked: {}.",
                                                    os::ToText(archive), error.what()));
    }
  }

  // Makes a project of what was unpacked, with an identifier of its own.
  static void SetUp(const PackManifest& manifest, const fs::path& folder,
                    const Invocation& invocation) {
    const fs::path file = folder / os::ToPath(manifest.project);
    const ChangeLock lock(file, Access::kChangeRegistry);
    StoredProject project(file, Access::kChangeRegistry, invocation.out);
    const std::string directory = os::ComponentPath(folder / os::ToPath(manifest.folder));
    Adoption settled = Settle(project.GetPlatform(), project.Stored(), manifest, directory);
    // Whatever its settings say: it works in what was unpacked with it.
    settled.result.settings[kWorkingDirectorySetting] = directory;
    NewHolder(project.GetPlatform(), settled.result.state, file);
    project.Save(settled.result, invocation);
    const PathPrefix moved(manifest.stored_directory, directory);
    for (const std::string& text : {settled.result.metadata, settled.result.catalogue}) {
      static_cast<void>(RebaseSidecars(project.GetPlatform(), text, moved, true));
    }
    std::vector<Record> areas;
    for (const Found& area : settled.found) areas.push_back(ToRecord(area));
    invocation.out.Done({{"project", os::ToText(file)}, {"working_directory", directory}},
                        fmt::format("Unpacked the project {}.", os::ToText(file)));
    invocation.out.Section("study_areas", std::move(areas));
  }

  std::string archive_;
  std::optional<std::string> folder_;
};

}  // namespace

void AddProjectArchives(const CommandGroup& project) {
  project.Add<ProjectPack>("pack", "Write the project with its files into one archive",
                           "kvdm project pack ../Retail.zip");
  project.Add<ProjectUnpack>(
      "unpack", "Make a project of such an archive, at any place",
      "kvdm project unpack Retail.zip\nkvdm project unpack Retail.zip Shops");
}

}  // namespace kvdm
