// The program `kvdm`: its command line, and what becomes of errors.
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <new>
#include <system_error>

#include <CLI/CLI.hpp>

#include "host/command.h"
#include "host/commands/groups.h"
#include "host/os.h"
#include "host/output.h"
#include "platform/utf8.h"

namespace kvdm {
namespace {

bool g_json = false;

// Ends the program when memory runs out. Libraries can't all go on after that: some would end it by
// a signal, and answers that are made of what is left would not be true. The stores outlive an end
// at any moment. Needs no memory.
[[noreturn]] void EndWithoutMemory() {
  std::fputs(
      "kvdm: Memory ran out, and kvdm ended at once. Close other programs, look with "
      "'kvdm status' whether anything was done, and try again.\n",
      stderr);
  if (g_json) {
    std::puts(
        R"({"ok": false, "error": {"code": 1, "message": "Memory ran out.", "number": null}})");
    std::fflush(stdout);
  }
  std::_Exit(static_cast<int>(ExitCode::kRefused));
}

struct MemoryHandler {
  MemoryHandler() { std::set_new_handler(EndWithoutMemory); }
};
// Made before the objects of libraries, which allocate too.
[[maybe_unused, gnu::init_priority(101)]] const MemoryHandler kMemoryHandler;

struct GlobalOptions {
  std::string project;
  Allowed allowed;
  OutputOptions output;
};

void Declare(CLI::App& app, GlobalOptions& options) {
  app.name("kvdm");
  app.require_subcommand(1);
  // A path may start with "/" on every system.
  app.allow_windows_style_options(false);
  app.add_option("-p,--project", options.project,
                 "The project file; without it the *.kvdm here or in a folder above")
      ->option_text("FILE");
  app.add_flag("--foreign", options.allowed.foreign,
               "Work with study areas of other working directories, too");
  app.add_flag("--outside", options.allowed.outside,
               "Change what is outside of the project, or another project's, too");
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

std::string CommandsOf(const CLI::App& app) {
  std::string names;
  for (const CLI::App* command : app.get_subcommands(nullptr)) {
    names += (names.empty() ? "" : ", ") + command->get_name();
  }
  return names;
}

std::string UsageSentence(const CLI::App& app, const CLI::App& command,
                          const CLI::ParseError& error) {
  const bool lacks_command = !command.get_subcommands(nullptr).empty();
  if (!lacks_command) return fmt::format("{}.", error.what());
  const auto unknown = app.remaining(true);
  const std::string wrong = unknown.empty()
                                ? "A command is missing"
                                : fmt::format("There is no command {}", unknown.front());
  return fmt::format("{}. The commands are {}.", wrong, CommandsOf(command));
}

// The exit status of a command line that can't be run as a command: 0 after help was asked for.
int PrintParseResult(const CLI::App& app, const CLI::ParseError& error, const Output& out) {
  if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
    app.exit(error, std::cout, std::cerr);
    return 0;
  }
  const CLI::App& command = Innermost(app);
  const std::string path = PathOf(command);
  return out.PrintFailure(
      path, {ExitCode::kUsage,
             fmt::format("{} '{} --help' tells more.", UsageSentence(app, command, error), path)});
}

bool HasJsonFlag(const std::vector<std::string>& arguments) {
  return std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
}

bool IsBold() { return os::OutputIsTerminal() && os::Environment("NO_COLOR").empty(); }

int RunCommand(const CommandGroup::Chosen& chosen, const Invocation& invocation) {
  try {
    chosen.command->Execute(invocation);
    invocation.out.Print(chosen.path);
    return static_cast<int>(invocation.out.Status());
  } catch (const Failure& failure) {
    return invocation.out.PrintFailure(chosen.path, failure);
  } catch (const std::system_error& error) {
    return invocation.out.PrintFailure(chosen.path, {ExitCode::kRefused, error.what()});
  } catch (const std::exception& error) {
    return invocation.out.PrintError(chosen.path, error);
  }
}

}  // namespace

int RunCommandLine(std::vector<std::string> arguments) {
  g_json = HasJsonFlag(arguments);
  GlobalOptions options;
  CLI::App app("Keeps the study areas, analyses and layers of market-analysis projects.");
  Declare(app, options);
  const std::vector<std::string> words = arguments;
  CommandGroup::Chosen chosen;
  for (const auto add : kCommandGroups) add(CommandGroup(app, chosen));

  Output usage({g_json, false, false});
  if (!std::all_of(arguments.begin(), arguments.end(), IsValidUtf8)) {
    return usage.PrintFailure("kvdm", {ExitCode::kUsage, "An argument is not UTF-8 text."});
  }
  try {
    std::reverse(arguments.begin(), arguments.end());  // as the parser takes them
    app.parse(std::move(arguments));
  } catch (const CLI::ParseError& error) {
    return PrintParseResult(app, error, usage);
  } catch (const Failure& failure) {
    return usage.PrintFailure(PathOf(Innermost(app)), failure);
  }
  options.output.bold = IsBold();
  Output out(options.output);
  return RunCommand(chosen, {options.project, options.allowed, out, words});
}

}  // namespace kvdm
