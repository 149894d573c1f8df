#include "safety/ownership.h"

#include <system_error>

#include "safety/json.h"
#include "safety/os.h"
#include "safety/working_directory.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

constexpr char kSchema[] = "kvdm.owner/1";
constexpr std::size_t kMostRecordBytes = std::size_t{1} << 20U;

fs::path RecordIn(const fs::path& working_directory) {
  return working_directory / ".kvdm" / "owner.json";
}

bool IsThere(const fs::path& path) {
  try {
    return os::Exists(path);
  } catch (const std::system_error&) {
    return true;
  }
}

Owner ParseOwner(std::string_view text) {
  try {
    const Json record = ParseJson(text);
    if (record.at("schema") != kSchema) Unreadable("It is of another version.");
    return {record.at("project"), record.at("id"), record.at("person"), record.at("machine"),
            record.at("shared")};
  } catch (const Json::exception&) {
    Unreadable("Parts of it are missing or of the wrong kind.");
  }
}

}  // namespace

bool IsClaimed(const fs::path& working_directory) {
  try {
    return os::Exists(RecordIn(working_directory));
  } catch (const std::system_error&) {
    return false;
  }
}

std::optional<Owner> ReadOwner(const fs::path& working_directory) {
  const fs::path file = RecordIn(working_directory);
  if (!os::Exists(file)) return std::nullopt;
  try {
    return ParseOwner(os::ReadBytes(file, kMostRecordBytes));
  } catch (const Failure& failure) {
    Unreadable("The record " + os::ToText(file) +
               ", which says whose the working directory is, can't be understood. " +
               failure.what() + " Restore it from a backup, or delete it.");
  }
}

void WriteOwner(const fs::path& working_directory, const Owner& owner) {
  const fs::path file = RecordIn(working_directory);
  os::CreateFolders(file.parent_path());
  os::Hide(file.parent_path());
  const Json record = {{"schema", kSchema},        {"project", owner.project},
                       {"id", owner.id},           {"person", owner.person},
                       {"machine", owner.machine}, {"shared", owner.is_shared}};
  os::Replace(file, record.dump(2) + "\n");
}

void RemoveOwner(const fs::path& working_directory) {
  const fs::path file = RecordIn(working_directory);
  std::error_code ignored;
  fs::remove(file, ignored);
  fs::remove(file.parent_path(), ignored);  // Only when it is empty.
}

Owner OwnerFor(const fs::path& working_directory, const Holder& holder) {
  const fs::path relative = holder.file.lexically_relative(working_directory);
  const std::u8string project = (relative.empty() ? holder.file : relative).generic_u8string();
  return {{project.begin(), project.end()}, holder.id, os::Person(), os::Machine(), false};
}

fs::path ProjectOf(const fs::path& working_directory, const Owner& owner) {
  return (working_directory / os::ToPath(owner.project)).lexically_normal();
}

bool IsGone(const fs::path& working_directory, const Owner& owner) {
  return owner.machine == os::Machine() && !IsThere(ProjectOf(working_directory, owner));
}

Tenure TenureOf(const fs::path& working_directory, const std::optional<Owner>& owner,
                const Holder& holder) {
  if (!owner) return Tenure::kUnclaimed;
  if (owner->is_shared) return Tenure::kShared;
  const fs::path project = ProjectOf(working_directory, *owner);
  if (os::AreSame(Resolved(project), holder.file)) return Tenure::kOwn;
  const bool is_same = !holder.id.empty() && owner->id == holder.id;
  return is_same && IsGone(working_directory, *owner) ? Tenure::kOwn : Tenure::kForeign;
}

}  // namespace kvdm
