// The program `kvdm`: its command line, and what becomes of errors.
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <new>

#include "host/command_line.h"
#include "host/os.h"
#include "host/output.h"

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

bool HasJsonFlag(const std::vector<std::string>& arguments) {
  return std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
}

bool IsBold() { return os::OutputIsTerminal() && os::Environment("NO_COLOR").empty(); }

void WorkIn(const std::string& folder) {
  std::error_code error;
  std::filesystem::current_path(os::ToPath(folder), error);
  if (!error) return;
  throw Failure(ExitCode::kNotFound,
                fmt::format("There is no folder {} to work in ({}).", folder, error.message()));
}

int Run(const CommandLine& line, const std::vector<std::string>& words) {
  OutputOptions options = line.Options().output;
  options.bold = IsBold();
  Output out(options);
  return Reported(line.Path(), out, [&] {
    if (!line.Options().folder.empty()) WorkIn(line.Options().folder);
    line.GetCommand().Execute({line.Options().project, line.Options().allowed, out, words});
  });
}

}  // namespace

int RunCommandLine(const std::vector<std::string>& words) {
  g_json = HasJsonFlag(words);
  try {
    return Run(CommandLine(words), words);
  } catch (const HelpText& help) {
    std::cout << help.text << std::flush;
    return 0;
  } catch (const UsageFailure& failure) {
    return Output({.json = g_json}).PrintFailure(failure.Path(), failure);
  }
}

}  // namespace kvdm
