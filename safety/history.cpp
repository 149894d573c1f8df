#include "safety/history.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <system_error>
#include <utility>

#include "safety/os.h"
#include "safety/result.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

constexpr char kFormat[] = "kvdm change";
constexpr int kVersion = 1;

Json JsonOf(const Change& change) {
  return {{"document", change.document}, {"collection", change.collection},
          {"guid", change.guid},         {"name", change.name},
          {"number", change.number},     {"place", change.place},
          {"before", change.before},     {"after", change.after}};
}

Change ChangeIn(const Json& json) {
  return {json.at("document"), json.at("collection"), json.at("guid"),   json.at("name"),
          json.at("number"),   json.at("place"),      json.at("before"), json.at("after")};
}

Json JsonOf(const Move& move) {
  return {{"folder", move.folder},
          {"trash", move.trash},
          {"name", move.name},
          {"guid", move.guid},
          {"back", move.back}};
}

// The name in the trash is one that leads nowhere else: records may come from anywhere.
Move MoveIn(const Json& json) {
  Move move{json.at("folder"), json.at("trash"), json.at("name"), json.at("guid"), json.at("back")};
  if (move.name.find_first_of("\\/:") != std::string::npos || move.name == "." ||
      move.name == "..") {
    Unreadable("It names a folder outside of the trash.");
  }
  return move;
}

template <class Parts>
Json ArrayOf(const Parts& parts) {
  Json array = Json::array();
  for (const auto& part : parts) array.push_back(JsonOf(part));
  return array;
}

// Calls `body`; a system error in it becomes a sentence about the history.
template <class Body>
auto Writing(Body body) {
  try {
    return body();
  } catch (const std::system_error& error) {
    throw Failure(ExitCode::kRefused,
                  fmt::format("The change can't be noted in the history of the working directory: "
                              "{}. Without that it could not be undone.",
                              error.what()));
  }
}

}  // namespace

ChangeRecord NewRecord(std::string program, std::vector<std::string> command) {
  ChangeRecord record;
  record.when = UtcText(std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()));
  record.person = os::Person();
  record.machine = os::Machine();
  record.program = std::move(program);
  record.command = std::move(command);
  return record;
}

Json ToJson(const ChangeRecord& record) {
  return {{"format", kFormat},
          {"version", kVersion},
          {"number", record.number},
          {"when", record.when},
          {"person", record.person},
          {"machine", record.machine},
          {"program", record.program},
          {"command", record.command},
          {"project", record.project},
          {"working_directory", record.working_directory},
          {"undoes", record.undoes},
          {"complete", record.is_complete},
          {"changes", ArrayOf(record.changes)},
          {"moves", ArrayOf(record.moves)},
          {"made", ArrayOf(record.made)}};
}

ChangeRecord RecordIn(const Json& json) try {
  if (json.at("format") != kFormat) Unreadable("It is no record of a change.");
  if (json.at("version").get<int>() > kVersion) {
    Unreadable("It was written by a newer kvdm. Use that one, or update this one.");
  }
  ChangeRecord record{json.at("number"),
                      json.at("when"),
                      json.at("person"),
                      json.at("machine"),
                      json.at("program"),
                      json.at("command").get<std::vector<std::string>>(),
                      json.at("project"),
                      json.at("working_directory"),
                      json.at("undoes"),
                      json.at("complete"),
                      {},
                      {},
                      {}};
  for (const Json& change : json.at("changes")) record.changes.push_back(ChangeIn(change));
  for (const Json& move : json.at("moves")) record.moves.push_back(MoveIn(move));
  for (const Json& made : json.at("made")) record.made.push_back(MoveIn(made));
  return record;
} catch (const Json::exception&) {
  Unreadable("Parts of it are missing or of the wrong kind.");
}

std::string UtcText(std::time_t time) {
  return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(time));
}

std::string NumberName(int number) { return fmt::format("{:06}", number); }

std::optional<int> NumberOfName(std::string_view name) {
  return name.size() < NumberName(0).size() ? std::nullopt : NumberIn(name);
}

std::optional<int> NumberIn(std::string_view digits) {
  const bool is_number = !digits.empty() && digits.size() < 10 &&
                         digits.find_first_not_of("0123456789") == std::string_view::npos;
  return is_number ? std::optional(std::stoi(std::string(digits))) : std::nullopt;
}

std::optional<ChangeRecord> TryRead(const History& history, int number) try {
  return history.Read(number);
} catch (const Failure& failure) {
  if (failure.code() != ExitCode::kUnreadable) throw;
  return std::nullopt;
}

std::vector<int> UndoneIn(const std::vector<ChangeRecord>& records) {
  std::vector<int> undone;
  for (const ChangeRecord& record : records) {
    if (record.undoes != 0) undone.push_back(record.undoes);
  }
  return undone;
}

FolderHistory::FolderHistory(const fs::path& working_directory)
    : folder_(working_directory / ".kvdm"),
      records_(folder_ / "history"),
      trash_(working_directory / ".kvdm-trash") {}

fs::path FolderHistory::LockFile() const { return folder_ / "lock"; }

std::shared_ptr<void> FolderHistory::TryLock() const {
  return Writing([&] {
    os::CreateFolders(folder_);
    os::Hide(folder_);
    os::CreateFolders(records_);
    return os::TryLock(LockFile());
  });
}

ChangeRecord FolderHistory::Read(int number) const {
  const fs::path ended = FileOf(number, ".json");
  const fs::path file = os::Exists(ended) ? ended : FileOf(number, ".begun");
  try {
    ChangeRecord record = RecordIn(ParseJson(os::ReadBytes(file)));
    record.number = number;
    return record;
  } catch (const Failure& failure) {
    throw Failure(ExitCode::kUnreadable,
                  fmt::format("The record {} in the history can't be used. {}", os::ToText(file),
                              failure.what()));
  } catch (const std::system_error& error) {
    throw Failure(ExitCode::kRefused, fmt::format("The record {} in the history can't be read: {}.",
                                                  os::ToText(file), error.code().message()));
  }
}

void FolderHistory::Begin(ChangeRecord& record) {
  Writing([&] {
    os::CreateFolders(records_);
    if (record.number == 0) {
      for (const auto& numbers : {Ended(), Begun()}) {
        if (!numbers.empty()) record.number = std::max(record.number, numbers.back());
      }
      ++record.number;
    }
    for (Move& move : record.moves) {
      if (move.trash == 0) move.trash = record.number;
    }
    const std::string text =
        ToJson(record).dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
    if (!os::Replace(FileOf(record.number, ".begun"), text)) {
      throw std::system_error(std::make_error_code(std::errc::io_error), os::ToText(records_));
    }
  });
}

void FolderHistory::End(int number) {
  Writing([&] { os::Rename(FileOf(number, ".begun"), FileOf(number, ".json")); });
  RemoveOldest();
}

void FolderHistory::Forget(int number) {
  Writing([&] { os::RemoveFile(FileOf(number, ".begun")); });
}

std::vector<int> FolderHistory::Numbers(const char* suffix) const {
  std::vector<int> numbers;
  if (!os::Exists(records_)) return numbers;
  for (const fs::path& file : os::FilesIn(records_)) {
    const auto number = NumberOfName(os::ToText(file.stem()));
    if (number && file.extension() == suffix) numbers.push_back(*number);
  }
  std::ranges::sort(numbers);
  return numbers;
}

fs::path FolderHistory::FileOf(int number, const char* suffix) const {
  return records_ / (NumberName(number) + suffix);
}

void FolderHistory::RemoveOldest() {
  const std::vector<int> numbers = Ended();
  for (std::size_t i = 0; i + kMostRecords < numbers.size(); ++i) {
    if (os::Exists(trash_ / NumberName(numbers[i]))) continue;
    Writing([&] { os::RemoveFile(FileOf(numbers[i], ".json")); });
  }
}

}  // namespace kvdm
