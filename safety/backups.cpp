#include "safety/backups.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <system_error>

#include "safety/history.h"
#include "safety/os.h"
#include "safety/result.h"

namespace kvdm {

std::vector<int> Backups::Numbers() const {
  std::vector<int> numbers;
  if (!os::Exists(file_.parent_path())) return numbers;
  const std::string start = os::ToText(file_.filename()) + ".~";
  for (const auto& other : os::FilesIn(file_.parent_path())) {
    const std::string name = os::ToText(other.filename());
    if (!name.starts_with(start) || !name.ends_with('~')) continue;
    const auto number = NumberIn(name.substr(start.size(), name.size() - start.size() - 1));
    if (number) numbers.push_back(*number);
  }
  std::ranges::sort(numbers);
  return numbers;
}

std::filesystem::path Backups::FileOf(int number) const {
  std::filesystem::path file = file_;
  file += fmt::format(".~{}~", number);
  return file;
}

std::string Backups::When(int number) const {
  const auto kept =
      std::chrono::file_clock::to_sys(std::filesystem::last_write_time(FileOf(number)));
  return UtcText(std::chrono::system_clock::to_time_t(
      std::chrono::time_point_cast<std::chrono::system_clock::duration>(kept)));
}

std::string Backups::Read(int number) const try {
  return os::ReadBytes(FileOf(number));
} catch (const std::system_error& error) {
  const bool is_missing = error.code() == std::errc::no_such_file_or_directory;
  throw Failure(is_missing ? ExitCode::kNotFound : ExitCode::kUnreadable,
                fmt::format("There is no backup {} to read: {}.", number, error.what()));
}

void Backups::Keep(std::string_view state) const {
  const auto numbers = Numbers();
  const int last = numbers.empty() ? 0 : numbers.back();
  if (last != 0 && os::ReadBytes(FileOf(last)) == state) return;
  os::CreateFolders(file_.parent_path());
  os::Replace(FileOf(last + 1), state);
  for (std::size_t i = 0; i + kMostBackups <= numbers.size(); ++i) {
    os::RemoveFile(FileOf(numbers[i]));
  }
}

}  // namespace kvdm
