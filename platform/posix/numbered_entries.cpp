#include "platform/posix/numbered_entries.h"

#include <charconv>
#include <system_error>

namespace kvdm {
namespace {

// The number that was appended as `text`; nothing when that is no number, or one with zeros in
// front.
std::optional<int> NumberIn(std::string_view text) {
  if (text.empty()) return 0;
  int number = 0;
  const auto [end, error] = std::from_chars(text.begin(), text.end(), number);
  const bool is_number = error == std::errc() && end == text.end() && text.front() != '-';
  return is_number && text.front() != '0' && number <= kLastNumber ? std::optional(number)
                                                                   : std::nullopt;
}

}  // namespace

NumberedEntries::NumberedEntries(std::string_view start, Kind kind)
    : start_(start), kind_(kind), last_(kLastNumber + 1, -1) {}

EntryVisitor NumberedEntries::Visitor() {
  return [this](const char* name, unsigned char type) {
    const auto rest = AfterStart(kind_ == kFolders ? TrimmedName(name) : name, start_);
    const auto number =
        rest ? NumberIn(rest->substr(0, kind_ == kFiles ? rest->find('.') : rest->npos))
             : std::nullopt;
    if (!number) return;
    entries_.push_back({name, type, last_[*number]});
    last_[*number] = static_cast<int>(entries_.size()) - 1;
  };
}

std::optional<bool> NumberedEntries::HasOnlyFolder(int number) const {
  const int at = last_.at(number);
  if (at < 0) return false;
  const Entry& entry = entries_[at];
  return entry.before < 0 && entry.type == DT_DIR ? std::optional(true) : std::nullopt;
}

}  // namespace kvdm
