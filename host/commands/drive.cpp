// kvdm project drive: the folders behind drive letters, on systems without drives.
#include <fmt/format.h>

#include <cctype>

#include "host/commands/groups.h"
#include "host/os.h"
#include "host/project_file.h"
#include "host/stored_project.h"
#include "platform/utf8.h"

namespace kvdm {
namespace {

char LetterIn(const std::string& given) {
  const bool has_colon = given.size() == 2 && given[1] == ':';
  const bool is_letter =
      (given.size() == 1 || has_colon) && std::isalpha(static_cast<unsigned char>(given[0])) != 0;
  const char letter =
      is_letter ? static_cast<char>(std::toupper(static_cast<unsigned char>(given[0]))) : '\0';
  if (is_letter && letter != 'Z') return letter;
  throw Failure(ExitCode::kUsage, fmt::format("{} is no drive letter; those are A to Y, as Z is "
                                              "the root of this computer's files.",
                                              given));
}

class DriveList : public Command {
 public:
  void Execute(const Invocation& invocation) override {
    const Project project = ReadProjectFile(FindProjectFile(invocation.project));
    std::vector<Record> rows;
    for (const auto& [letter, folder] : project.drives) {
      rows.push_back({{"drive", fmt::format("{}:", letter)},
                      {"folder", folder},
                      {"found", os::Exists(os::ToPath(folder))}});
    }
    invocation.out.Items(std::move(rows), "The project has no folders for drives.");
  }
};

// Changes the folder of one drive.
class DriveChange : public Command {
 public:
  explicit DriveChange(Arguments arguments) {
    arguments.Required("LETTER", letter_, "The drive, such as D");
  }

  void Execute(const Invocation& invocation) override {
    const char letter = LetterIn(letter_);
    const auto file = FindProjectFile(invocation.project);
    const ChangeLock lock(file, Access::kChange);
    StoredProject project(file, Access::kChange, invocation.out);
    os::Drives drives = project.Drives();
    const std::string sentence = Change(drives, letter);
    project.SaveDrives(drives, invocation);
    const auto found = drives.find(letter);
    invocation.out.Done({{"drive", fmt::format("{}:", letter)},
                         {"folder", found == drives.end() ? Field() : Field(found->second)}},
                        sentence);
  }

 private:
  // Answers what was done, as a sentence.
  virtual std::string Change(os::Drives& drives, char letter) = 0;

  std::string letter_;
};

class DriveSet : public DriveChange {
 public:
  explicit DriveSet(Arguments arguments) : DriveChange(arguments) {
    arguments.Required("DIR", folder_, "The folder behind it");
  }

 private:
  std::string Change(os::Drives& drives, char letter) override {
    const auto path = os::Absolute(os::ToPath(folder_));
    const std::string folder = os::ToText(path);
    if (!IsValidUtf8(folder)) {
      throw Failure(ExitCode::kUsage, fmt::format("The path {} is not UTF-8 text.", folder));
    }
    if (!std::filesystem::is_directory(path)) {
      throw Failure(ExitCode::kNotFound, fmt::format("There is no folder {}.", folder));
    }
    drives[letter] = folder;
    return fmt::format("{}: is {} now.", letter, folder);
  }

  std::string folder_;
};

class DriveUnset : public DriveChange {
 public:
  using DriveChange::DriveChange;

 private:
  std::string Change(os::Drives& drives, char letter) override {
    if (drives.erase(letter) == 0) {
      throw Failure(ExitCode::kNotFound,
                    fmt::format("{}: has no folder. 'kvdm project drive list' shows those that "
                                "have one.",
                                letter));
    }
    return fmt::format("{}: has no folder now.", letter);
  }
};

}  // namespace

void AddProjectDrives(const CommandGroup& project) {
  const CommandGroup drive = project.Group("drive", "Folders behind drive letters, without drives");
  drive.Add<DriveList>("list", "List the drives that have a folder", "kvdm project drive list");
  drive.Add<DriveSet>("set", "Give a drive its folder", "kvdm project drive set D /srv/data");
  drive.Add<DriveUnset>("unset", "Take a drive's folder away", "kvdm project drive unset D");
}

}  // namespace kvdm
