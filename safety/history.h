// The history of a working directory: one record a change, so that each can be taken back.
#pragma once

#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "safety/changes.h"
#include "safety/json.h"

namespace kvdm {

// A folder that a change moved into the trash, or `back` out of it.
struct Move {
  std::string folder;  // its place, as a path of the component
  int trash = 0;       // the number of the change under which the trash has it; 0 for this one
  std::string name;    // its name there
  std::string guid;    // of the item that it belongs to
  bool back = false;

  bool operator==(const Move&) const = default;
};

struct ChangeRecord {
  int number = 0;                    // from 1; 0 for one that the history does not have yet
  std::string when;                  // in UTC: "2026-11-15T07:35:30Z"
  std::string person;                // the user's name
  std::string machine;               // and computer
  std::string program;               // "kvdm 1.0"
  std::vector<std::string> command;  // what the user called
  std::string project;               // where the documents other than the catalogue are stored
  std::string working_directory;     // at that time
  int undoes = 0;                    // the number of the change that this one takes back
  bool is_complete = false;          // whether all that it is to change is in here
  Changes changes;
  std::vector<Move> moves;
  std::vector<Move> made;  // folders of items that it made, and no moves yet

  bool operator==(const ChangeRecord&) const = default;
  [[nodiscard]] bool IsEmpty() const { return changes.empty() && moves.empty() && made.empty(); }
};

// The present time, person and machine, for a new record.
[[nodiscard]] ChangeRecord NewRecord(std::string program, std::vector<std::string> command);

// "2026-11-15T07:35:30Z"
[[nodiscard]] std::string UtcText(std::time_t time);

// A record as JSON, and back. Failure kUnreadable for what is no record or one of a newer version.
[[nodiscard]] Json ToJson(const ChangeRecord& record);
[[nodiscard]] ChangeRecord RecordIn(const Json& json);

// Where records are kept. Whoever changes anything holds its lock. Failures are kRefused when it
// can't be written or read, kUnreadable when a record is damaged or of a newer version.
class History {
 public:
  History() = default;
  History(const History&) = delete;
  History& operator=(const History&) = delete;
  virtual ~History() = default;

  // The numbers of the changes that were ended, in their order; and of those that were not.
  [[nodiscard]] virtual std::vector<int> Ended() const = 0;
  [[nodiscard]] virtual std::vector<int> Begun() const = 0;
  [[nodiscard]] virtual ChangeRecord Read(int number) const = 0;

  // Notes what a change is about to do, and gives it a number if it has none; again when more is
  // known. On return a loss of power does not lose it.
  virtual void Begin(ChangeRecord& record) = 0;
  // The change is done.
  virtual void End(int number) = 0;
  // It has not happened.
  virtual void Forget(int number) = 0;
};

// The most records that are kept; the oldest go. Those whose folders are in the trash stay.
inline constexpr std::size_t kMostRecords = 1000;

// The history in a working directory:
//
//   .kvdm/history/000012.json    a change that was ended
//   .kvdm/history/000013.begun   one that was not
//   .kvdm/lock                   locked while one goes on
//   .kvdm-trash/000012/          the folders that it moved away
class FolderHistory final : public History {
 public:
  explicit FolderHistory(const std::filesystem::path& working_directory);

  // Nothing when another process has it.
  [[nodiscard]] std::shared_ptr<void> TryLock() const;
  [[nodiscard]] std::filesystem::path LockFile() const;

  [[nodiscard]] std::vector<int> Ended() const override { return Numbers(".json"); }
  [[nodiscard]] std::vector<int> Begun() const override { return Numbers(".begun"); }
  [[nodiscard]] ChangeRecord Read(int number) const override;
  void Begin(ChangeRecord& record) override;
  void End(int number) override;
  void Forget(int number) override;

 private:
  [[nodiscard]] std::vector<int> Numbers(const char* suffix) const;
  [[nodiscard]] std::filesystem::path FileOf(int number, const char* suffix) const;
  void RemoveOldest();

  std::filesystem::path folder_;
  std::filesystem::path records_;
  std::filesystem::path trash_;
};

// The name of a number in a history: "000012"; and the number of such a name, nothing for another.
[[nodiscard]] std::string NumberName(int number);
[[nodiscard]] std::optional<int> NumberOfName(std::string_view name);

// The number that up to nine digits are; nothing for another text.
[[nodiscard]] std::optional<int> NumberIn(std::string_view digits);

// A record; nothing for one that is damaged or of a newer version. Whether one is can't be told
// when it can't be read: then this fails.
[[nodiscard]] std::optional<ChangeRecord> TryRead(const History& history, int number);

// The numbers of the changes that others have taken back, by records in any order.
[[nodiscard]] std::vector<int> UndoneIn(const std::vector<ChangeRecord>& records);

}  // namespace kvdm
