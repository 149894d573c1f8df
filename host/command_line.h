// A command line, understood: the command that it asks for, with its arguments, and the options
// that all commands take.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/arguments.h"
#include "host/output.h"
#include "host/session.h"

namespace kvdm {

struct GlobalOptions {
  std::string folder;  // to work in; "" for the current one
  std::string project;
  Allowed allowed;
  OutputOptions output;
};

// Thrown in place of a command where help is asked for.
struct HelpText {
  std::string text;
};

// Words that are no command line, and the command that they are nearest to: "kvdm area".
class UsageFailure : public Failure {
 public:
  UsageFailure(std::string path, const std::string& sentence)
      : Failure(ExitCode::kUsage, sentence), path_(std::move(path)) {}
  [[nodiscard]] const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

class CommandLine {
 public:
  // `words` without the program's own name. Throws HelpText, UsageFailure.
  explicit CommandLine(std::vector<std::string> words);
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;
  ~CommandLine();

  [[nodiscard]] const std::string& Path() const { return chosen_.path; }  // "kvdm area list"
  [[nodiscard]] Command& GetCommand() const { return *chosen_.command; }
  [[nodiscard]] const GlobalOptions& Options() const { return options_; }

 private:
  void Parse(const std::vector<std::string>& words, bool all_commands);

  std::unique_ptr<CLI::App> app_;
  CommandGroup::Chosen chosen_;
  GlobalOptions options_;
};

// Does the work of a command and prints its result, or what failed; answers the exit status. `path`
// is that of the command.
int Reported(const std::string& path, Output& out, const std::function<void()>& work);

}  // namespace kvdm
