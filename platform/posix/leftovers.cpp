#include "platform/posix/leftovers.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <optional>
#include <string_view>

#include "platform/posix/folder_entries.h"

namespace kvdm {
namespace {

constexpr std::string_view kDigits = "0123456789";

bool IsOf(std::string_view text, std::string_view characters) {
  return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

// What makes a temporary file's name its own: ".kvdm-" stands before it and ".tmp" after it.
std::optional<std::string_view> OwnPart(std::string_view name) {
  constexpr std::string_view kBefore = ".kvdm-";
  constexpr std::string_view kAfter = ".tmp";
  if (!name.starts_with(kBefore) || !name.ends_with(kAfter)) return std::nullopt;
  name.remove_prefix(kBefore.size());
  name.remove_suffix(std::min(kAfter.size(), name.size()));
  return name;
}

// Whether the process with this number is there; a number too large is nobody's.
bool Runs(std::string_view process) {
  pid_t number = 0;
  const auto read = std::from_chars(process.begin(), process.end(), number);
  return read.ec == std::errc() && (::kill(number, 0) == 0 || errno != ESRCH);
}

// A name is the writing process and a count, or 16 digits of chance; then the writer has a lock.
bool IsLeftover(int folder, const std::string& name) {
  const auto own = OwnPart(name);
  if (!own) return false;
  const std::size_t dash = own->find('-');
  if (dash != std::string_view::npos) {
    const auto process = own->substr(0, dash);
    return IsOf(process, kDigits) && IsOf(own->substr(dash + 1), kDigits) && !Runs(process);
  }
  constexpr std::size_t kChanceDigits = 16;
  if (own->size() != kChanceDigits || !IsOf(*own, "0123456789abcdef")) return false;
  const FileDescriptor file(
      ::openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  return file.get() >= 0 && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0;
}

}  // namespace

void ClearLeftovers(int folder) {
  for (const std::string& name : EntryNames(folder)) {
    const auto facts = ExamineEntry(folder, name);
    if (facts && facts->is_regular_file && IsLeftover(folder, name)) {
      ::unlinkat(folder, name.c_str(), 0);
    }
  }
}

}  // namespace kvdm
