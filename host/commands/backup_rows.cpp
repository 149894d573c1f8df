#include "host/commands/backup_rows.h"

#include <fmt/format.h>

#include "safety/os.h"

namespace kvdm {

int NumberIn(const std::string& text) {
  const bool fits = !text.empty() && text.size() < 10 &&
                    text.find_first_not_of("0123456789") == std::string::npos;
  const int number = fits ? std::stoi(text) : 0;
  if (number > 0) return number;
  throw Failure(ExitCode::kUsage,
                fmt::format("{} is no number of those that are listed. Those count from 1.", text));
}

std::vector<Record> RowsOf(const Backups& backups) {
  std::vector<Record> rows;
  for (const int number : backups.Numbers()) {
    rows.push_back({{"number", std::int64_t{number}},
                    {"kept", backups.When(number)},
                    {"bytes", static_cast<std::int64_t>(backups.Read(number).size())},
                    {"file", os::ToText(backups.FileOf(number))}});
  }
  return rows;
}

}  // namespace kvdm
