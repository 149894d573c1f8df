// kvdm run: many commands in one process, from a file or as they come in.
#include <fmt/format.h>

#include <fstream>

#include "host/batch.h"
#include "host/checks.h"
#include "host/commands/groups.h"
#include "host/os.h"
#include "safety/json.h"

namespace kvdm {
namespace {

using Words = std::vector<std::string>;

// The words of a line as a shell takes them apart: blanks separate, single quotes keep all as it
// is, double quotes all but "\" before a quote or another "\", and "\" keeps the next character.
Words WordsOfShell(std::string_view line) {
  Words words;
  bool in_word = false;
  char quote = 0;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    const char next = i + 1 < line.size() ? line[i + 1] : '\0';
    if (quote == 0 && (c == ' ' || c == '\t' || c == '\r')) {
      in_word = false;
      continue;
    }
    if (quote == 0 && !in_word && c == '#') break;
    if (!in_word) words.emplace_back();
    in_word = true;
    if (c == quote) {
      quote = 0;
    } else if (quote == 0 && (c == '\'' || c == '"')) {
      quote = c;
    } else if (c == '\\' && next != '\0' &&
               (quote == 0 || (quote == '"' && (next == '"' || next == '\\')))) {
      words.back() += line[++i];
    } else {
      words.back() += c;
    }
  }
  if (quote == 0) return words;
  throw Failure(ExitCode::kUsage, fmt::format("A quote ({}) is not closed.", quote));
}

// A line that begins with "[" is a JSON array of words.
Words WordsOf(std::string_view line) {
  const auto start = line.find_first_not_of(" \t\r");
  Words words;
  if (start != line.npos && line[start] == '[') {
    try {
      words = ParseJson(line).get<Words>();
    } catch (const std::exception&) {
      throw Failure(ExitCode::kUsage, "It is no JSON array of texts.");
    }
  } else {
    words = WordsOfShell(line);
  }
  if (!words.empty() && words.front() == "kvdm") words.erase(words.begin());
  return words;
}

// Lines of standard input; `before_waiting` is called whenever none is there yet.
class InputLines {
 public:
  explicit InputLines(std::function<void()> before_waiting)
      : before_waiting_(std::move(before_waiting)) {}

  bool Next(std::string& line) {
    auto end = text_.find('\n', next_);
    while (end == text_.npos && !ended_) {
      text_.erase(0, std::exchange(next_, 0));
      if (os::InputWouldWait()) before_waiting_();
      ended_ = !os::ReadInput(text_);
      end = text_.find('\n');
    }
    if (next_ == text_.size()) return false;
    line = text_.substr(next_, end - next_);
    next_ = end == text_.npos ? text_.size() : end + 1;
    return true;
  }

 private:
  std::function<void()> before_waiting_;
  std::string text_;
  std::size_t next_ = 0;
  bool ended_ = false;
};

struct Failed {
  int line = 0;
  int status = 0;
};

class Run : public Command {
 public:
  explicit Run(Arguments arguments) {
    arguments.Optional("FILE", file_,
                       "The commands, one a line; without it or for - those of standard input");
    arguments.Flag("--keep-going", keep_going_, "Go on after a command that fails");
    arguments.Flag("--atomic", atomic_, "Put everything back when a command fails");
    arguments.Optional("--save-every", save_every_,
                       "Save after so many commands, not at the end alone");
  }

  void Execute(const Invocation& invocation) override {
    if (keep_going_ && atomic_) {
      throw Failure(ExitCode::kUsage, "Give either --keep-going or --atomic.");
    }
    const int save_every = save_every_ ? ListNumber(*save_every_) : 0;
    invocation.out.SetLines(true);
    Batch batch(invocation);
    ForEachLine(batch, [&](const std::string& line) {
      ++line_;
      const bool goes_on = RunLine(batch, line);
      if (save_every > 0 && done_ > 0 && done_ % save_every == 0) batch.Save();
      return goes_on;
    });
    Finish(batch, invocation.out);
  }

 private:
  template <class Each>
  void ForEachLine(Batch& batch, Each each) {
    std::string line;
    if (!file_ || *file_ == "-") {
      InputLines lines([&] {
        if (!atomic_) batch.Save();
      });
      while (lines.Next(line) && each(line)) {
      }
      return;
    }
    std::ifstream file(os::ToPath(*file_), std::ios::binary);
    if (!file)
      throw Failure(ExitCode::kNotFound,
                    fmt::format("There is no file {} that can be read.", *file_));
    while (std::getline(file, line) && each(line)) {
    }
  }

  // Whether to go on.
  bool RunLine(Batch& batch, const std::string& line) {
    int status = 0;
    try {
      const Words words = WordsOf(line);
      if (words.empty()) return true;
      if (words.front() == "run") {
        throw Failure(ExitCode::kUsage, "A command that is run can't run others.");
      }
      status = batch.Run(words);
    } catch (const Failure& failure) {
      Output::Tell(fmt::format("kvdm run: {}", failure.what()));
      status = static_cast<int>(failure.code());
    }
    if (status == 0) {
      ++done_;
      return true;
    }
    if (failed_ == 0) first_ = {line_, status};
    ++failed_;
    done_ -= batch.TakenBack();
    Output::Tell(fmt::format("kvdm run: That was line {}{}.", line_,
                             batch.TakenBack() == 0
                                 ? ""
                                 : fmt::format(", which failed halfway: the {} changes before it "
                                               "that were not saved yet are taken back with it",
                                               batch.TakenBack())));
    return keep_going_;
  }

  void Finish(Batch& batch, Output& out) {
    if (failed_ == 0) {
      batch.Save();
      return out.Done({{"done", std::int64_t{done_}}},
                      fmt::format("Commands that were run: {}.", done_));
    }
    if (atomic_) {
      batch.PutBack();
      throw Failure(static_cast<ExitCode>(first_.status),
                    fmt::format("Line {} failed, and everything was put back.", first_.line));
    }
    batch.Save();
    throw Failure(
        static_cast<ExitCode>(first_.status),
        fmt::format("Line {} failed{}. Commands that were run before and saved: {}.", first_.line,
                    failed_ == 1 ? "" : fmt::format(", and {} others", failed_ - 1), done_));
  }

  std::optional<std::string> file_;
  std::optional<std::string> save_every_;
  bool keep_going_ = false;
  bool atomic_ = false;
  int line_ = 0;
  int done_ = 0;
  int failed_ = 0;
  Failed first_;
};

}  // namespace

void AddRunCommand(const CommandGroup& root) {
  root.Add<Run>("run", "Run many commands, each a line",
                "kvdm run changes.txt\nkvdm run --atomic < changes.txt");
}

}  // namespace kvdm
