// Output of a command: results on standard output, everything else on standard error.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kvdm/platform/error.h>

#include "safety/os.h"
#include "safety/result.h"

namespace kvdm {

struct OutputOptions {
  bool json = false;   // one JSON object instead of text for people
  bool bold = false;   // headings stand out
  bool quiet = false;  // what was done is not said
  bool debug = false;  // log lines and the causes of errors are shown
  bool lines = false;  // of several JSON objects, each is one line
};

// Holds a command's result until the command is through: a command that fails prints no result.
class Output {
 public:
  explicit Output(OutputOptions options) : options_(options) {}

  // A list. JSON: {"items": [...]}. People get a table, or `none` when there is nothing in it.
  void Items(std::vector<Record> items, std::string_view none);
  // One thing. JSON: its fields. People get a line for each field.
  void Fields(Record fields);
  // Adds to Fields a list: JSON "name": [...]. People get a table under the fields; nothing when
  // it is empty.
  void Section(std::string_view name, std::vector<Record> rows);
  // Work done. JSON: the fields. People get the sentence.
  void Done(Record fields, std::string_view sentence);
  // Lines for people. JSON: the fields, and "name": [...].
  void Lines(Record fields, std::string_view name, std::vector<Record> rows,
             std::string_view lines);
  // A bare value. JSON: the fields. People get the text alone.
  void Text(Record fields, std::string_view text);

  // Says at once, on standard error, what the component shows to the user.
  void Message(std::string_view text);
  // Runs `body` and answers its result; what the component shows meanwhile only goes to the log.
  template <class Body>
  auto Quietly(Body&& body) {
    quiet_ = true;
    auto result = std::forward<Body>(body)();
    quiet_ = false;
    return result;
  }
  // Notes a line of the component's log on standard error, with --debug.
  void Note(std::string_view line);
  // Runs `body`. The line that was noted first meanwhile, as the end of a sentence that says what
  // failed: ": Path not found: D:\Data (76)"; "" when none was.
  template <class Body>
  [[nodiscard]] std::string CauseIn(Body&& body) {
    noted_.clear();
    std::forward<Body>(body)();
    return noted_.empty() ? "" : ": " + noted_;
  }
  static void Tell(std::string_view text);

  // The exit status of a command that ends with a result.
  void EndWith(ExitCode status) { status_ = status; }
  [[nodiscard]] ExitCode Status() const { return status_; }

  [[nodiscard]] const std::vector<std::string>& Messages() const { return messages_; }

  // The drives of the project: with them JSON has for each folder and file its path of the system,
  // and whether it is there.
  void UseDrives(const os::Drives& drives) { drives_ = drives; }

  [[nodiscard]] const OutputOptions& Options() const { return options_; }
  void SetLines(bool lines) { options_.lines = lines; }
  // Forgets the result, for that of another command.
  void Clear() { *this = Output(options_); }

  // Prints the result of a command such as "kvdm area list". Failure kRefused when standard output
  // does not take it.
  void Print(std::string_view command) const;
  // Prints an error in place of the result, and answers the exit status. `command` names the
  // command, such as "kvdm area create".
  int PrintFailure(std::string_view command, const Failure& failure) const;
  int PrintError(std::string_view command, const std::exception& error) const;

 private:
  struct Report {
    ExitCode code;
    std::string sentence;
    Field number;
  };

  int PrintReport(std::string_view command, const Report& report,
                  const std::vector<Record>& candidates) const;
  [[nodiscard]] std::string Table(const std::vector<Record>& rows) const;

  OutputOptions options_;
  Record fields_;
  std::string list_name_;
  std::vector<Record> list_;
  std::string text_;
  std::vector<std::string> messages_;
  std::string noted_;
  std::optional<os::Drives> drives_;
  bool quiet_ = false;
  ExitCode status_ = ExitCode::kDone;
};

}  // namespace kvdm
