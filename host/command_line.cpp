#include "host/command_line.h"

#include <fmt/format.h>

#include <algorithm>
#include <sstream>
#include <system_error>

#include <CLI/CLI.hpp>

#include "host/commands/groups.h"
#include "host/text.h"
#include "platform/utf8.h"

namespace kvdm {
namespace {

void Declare(CLI::App& app, GlobalOptions& options) {
  app.name("kvdm");
  app.require_subcommand(1);
  // A path may start with "/" on every system.
  app.allow_windows_style_options(false);
  app.add_option("-p,--project", options.project,
                 "The project file, or its folder; without it $KVDM_PROJECT, or the *.kvdm here or "
                 "in a folder above")
      ->option_text("FILE");
  app.add_flag("--foreign", options.allowed.foreign,
               "Work with study areas of other working directories, too");
  app.add_flag("--outside", options.allowed.outside,
               "Change what is outside of the project, or another project's, too");
  app.add_option("-C", options.folder, "Work as if started in that folder")->option_text("DIR");
  app.add_flag("-q,--quiet", options.output.quiet, "Say nothing of what was done");
  app.set_version_flag("-V,--version", "kvdm " KVDM_VERSION, "Print the version and exit");
  app.add_flag("--json", options.output.json, "Print one JSON object");
  app.add_flag("--debug", options.output.debug, "Show log lines and the causes of errors");
  app.footer(
      "Examples:\n  kvdm init North --workdir North/KVData\n  kvdm area create \"North side\"\n"
      "  kvdm analysis list --json\n\n'kvdm COMMAND --help' tells more about a command.");
}

// The innermost command that the command line names.
const CLI::App& Innermost(const CLI::App& app) {
  const auto parsed = app.get_subcommands();
  return parsed.empty() ? app : Innermost(*parsed.front());
}

std::vector<std::string> CommandsOf(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands(nullptr)) names.push_back(command->get_name());
  return names;
}

std::vector<std::string> OptionsOf(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* at = &app; at != nullptr; at = at->get_parent()) {
    for (const CLI::Option* option : at->get_options()) {
      for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
  }
  return names;
}

// " Did you mean NAME?", or nothing.
std::string Proposal(std::string_view word, const std::vector<std::string>& names) {
  const std::string nearest = Nearest(word, names);
  return nearest.empty() ? "" : fmt::format(" Did you mean {}?", nearest);
}

std::string UsageSentence(const CLI::App& app, const CLI::App& command,
                          const CLI::ParseError& error) {
  const bool lacks_command = !command.get_subcommands(nullptr).empty();
  const auto unknown = app.remaining(true);
  const std::string word = unknown.empty() ? "" : unknown.front();
  if (word.starts_with("--")) {
    return fmt::format("There is no option {}.{}", word, Proposal(word, OptionsOf(command)));
  }
  if (!lacks_command) return fmt::format("{}.", error.what());
  const auto commands = CommandsOf(command);
  return fmt::format(
      "{}.{} The commands are {}.",
      word.empty() ? "A command is missing" : fmt::format("There is no command {}", word),
      Proposal(word, commands), fmt::join(commands, ", "));
}

// What is wrong with words, or the help that they ask for.
[[noreturn]] void Explain(const CLI::App& app, const CLI::ParseError& error) {
  if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
    std::ostringstream text;
    app.exit(error, text, text);
    throw HelpText{text.str()};
  }
  const CLI::App& command = Innermost(app);
  const std::string path = PathOf(command);
  throw UsageFailure(
      path, fmt::format("{} '{} --help' tells more.", UsageSentence(app, command, error), path));
}

// What describes the whole command line needs all of it.
bool DescribesAll(const std::vector<std::string>& words) {
  return std::ranges::find(words, "generate") != words.end();
}

}  // namespace

CommandLine::~CommandLine() = default;

CommandLine::CommandLine(std::vector<std::string> words) {
  if (!words.empty() && words.front() == "help") {
    words.erase(words.begin());
    words.emplace_back("--help");
  }
  if (!std::ranges::all_of(words, IsValidUtf8)) {
    throw UsageFailure("kvdm", "An argument is not UTF-8 text.");
  }
  try {
    Parse(words, DescribesAll(words));
    return;
  } catch (const CLI::ParseError&) {
    // Help and what to say of an error need all commands.
  }
  try {
    Parse(words, true);
  } catch (const CLI::ParseError& error) {
    Explain(*app_, error);
  }
}

int Reported(const std::string& path, Output& out, const std::function<void()>& work) {
  try {
    work();
    out.Print(path);
    return static_cast<int>(out.Status());
  } catch (const Failure& failure) {
    return out.PrintFailure(path, failure);
  } catch (const std::system_error& error) {
    return out.PrintFailure(path, {ExitCode::kRefused, error.what()});
  } catch (const std::exception& error) {
    return out.PrintError(path, error);
  }
}

void CommandLine::Parse(const std::vector<std::string>& words, bool all_commands) {
  options_ = {};
  app_ = std::make_unique<CLI::App>(
      "Keeps the study areas, analyses and layers of market-analysis projects.");
  Declare(*app_, options_);
  const CommandGroup root(*app_, chosen_, all_commands ? nullptr : &words);
  for (const auto add : kCommandGroups) add(root);
  try {
    app_->parse(
        std::vector<std::string>(words.rbegin(), words.rend()));  // as the parser takes them
  } catch (const UsageFailure&) {
    throw;
  } catch (const Failure& failure) {
    throw UsageFailure(PathOf(Innermost(*app_)), failure.what());
  }
}

}  // namespace kvdm
