// kvdm init: makes a project.
#include <fmt/format.h>

#include <cctype>
#include <system_error>

#include "host/checks.h"
#include "host/commands/groups.h"
#include "host/os.h"
#include "host/ownership.h"
#include "host/project_file.h"
#include "platform/utf8.h"
#include "util/names.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

constexpr char kDefaultWorkingFolder[] = "KVData";
constexpr char kExampleFolder[] = "/srv/data/North";

// `path` as an absolute path without a separator at its end. Failure kUsage when it is not UTF-8.
fs::path Absolute(const fs::path& path) {
  fs::path absolute = os::Absolute(path);
  if (!absolute.has_filename()) absolute = absolute.parent_path();
  if (!IsValidUtf8(os::ToText(absolute))) {
    throw Failure(ExitCode::kUsage, fmt::format("The path {} is not UTF-8 text. Choose a folder "
                                                "whose whole path is.",
                                                os::ToText(absolute)));
  }
  return absolute;
}

bool NamesDrive(std::string_view path) {
  return path.size() > 1 && std::isalpha(static_cast<unsigned char>(path[0])) != 0 &&
         path[1] == ':';
}

void CreateFolders(const fs::path& folder) {
  try {
    os::CreateFolders(folder);
  } catch (const std::system_error& error) {
    throw Failure(ExitCode::kRefused, fmt::format("The folder {} can't be made: {}.",
                                                  os::ToText(folder), error.code().message()));
  }
}

// A new project on a system without drives has folders for these alone.
void RequireKnownDrive(const std::string& path) {
  const int letter = std::toupper(static_cast<unsigned char>(path.front()));
  if (letter == 'C' || letter == 'Z') return;
  throw Failure(ExitCode::kUsage,
                fmt::format("{} can't be the working directory of a new project: this computer has "
                            "no drive {}:. Name a folder such as {}.",
                            path, static_cast<char>(letter), kExampleFolder));
}

// The working directory in the component's form; the folders above it are made. Where the system
// has no drives, a path that names one is in that form already.
std::string WorkingFolder(const fs::path& path) {
  if (!path.has_root_name() && NamesDrive(os::ToText(path))) {
    RequireKnownDrive(os::ToText(path));
    return os::ToText(path);
  }
  const fs::path folder = Absolute(path);
  for (const fs::path& part : folder.relative_path()) RequireFolderName(os::ToText(part));
  CreateFolders(folder.parent_path());
  return os::ComponentPath(folder);
}

class Init : public Command {
 public:
  explicit Init(Arguments arguments) {
    arguments.Optional("FOLDER", folder_, "The folder of the project file; made when missing");
    arguments.Optional("--workdir", workdir_, "The working directory; without it FOLDER/KVData");
    arguments.Optional("--name", name_, "The project's name; without it the folder's");
  }

  void Execute(const Invocation& invocation) override {
    const fs::path folder = Absolute(os::ToPath(folder_.value_or(".")));
    const std::string name = name_.value_or(os::ToText(folder.filename()));
    RequireNewName("The name of the project", name);
    const fs::path file = folder / os::ToPath(name + ".kvdm");
    const std::string workdir =
        WorkingFolder(workdir_ ? os::ToPath(*workdir_) : folder / kDefaultWorkingFolder);
    invocation.out.UseDrives({});
    if (!invocation.allowed.outside) RequireNobodys({{}, workdir}, {Resolved(file), ""});
    CreateFolders(folder);
    const ChangeLock lock(file, Access::kMake);
    if (os::Exists(file)) {
      throw Failure(ExitCode::kConflict, fmt::format("There is a project {} already. It stays as "
                                                     "it is.",
                                                     os::ToText(file)));
    }
    Create(file, workdir, invocation.out);
  }

 private:
  static void Create(const fs::path& file, const std::string& workdir, Output& out) {
    Project project;
    project.settings[kWorkingDirectorySetting] = workdir;
    HostedComponent component(project, Access::kMake, out);
    const std::string made = component.Manager().WorkingDirectory();
    if (made.empty() || !component.GetServices().platform.files->FolderExists(made)) {
      throw Failure(ExitCode::kRefused,
                    fmt::format("The working directory {} can't be made.", workdir));
    }
    const fs::path place = WorkingDirectory({}, workdir).Place();
    const auto before = ReadOwner(place);
    Claim(component, place, before, file);
    try {
      component.SaveTo(project);
      WriteProjectFile(file, project);
    } catch (const Unconfirmed&) {
      throw;
    } catch (const std::exception&) {
      if (!before) RemoveOwner(place);
      throw;
    }
    out.Done({{"project", os::ToText(file)}, {"working_directory", made}},
             fmt::format("Created the project {} with the working directory {}.", os::ToText(file),
                         made));
  }

  // Records the project as the owner of a working directory that is not shared.
  static void Claim(HostedComponent& component, const fs::path& place,
                    const std::optional<Owner>& before, const fs::path& file) {
    const Holder holder = NewHolder(component, file);
    if (TenureOf(place, before, holder) != Tenure::kShared) RecordOwner(place, holder);
  }

  std::optional<std::string> folder_;
  std::optional<std::string> workdir_;
  std::optional<std::string> name_;
};

}  // namespace

void AddInitCommand(const CommandGroup& root) {
  const bool has_drives = fs::path("D:\\").has_root_name();
  root.Add<Init>("init", "Make a project and its working directory",
                 fmt::format("kvdm init\nkvdm init North\nkvdm init North --workdir {}",
                             has_drives ? "D:\\Data\\North" : kExampleFolder));
}

}  // namespace kvdm
