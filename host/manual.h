// The manual page and the completions for shells, made from what the command line takes.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kvdm {

// The command line as plain data.
struct CommandOption {
  std::vector<std::string> names;  // "-p", "--project"; of a positional argument, its name
  std::string value;               // what it takes, such as "FILE"; "" for a flag
  std::string help;
  bool required = false;
};

struct CommandNode {
  std::string name;
  std::string path;  // "kvdm area list"
  std::string help;
  std::string footer;  // examples, and what else stands at the end of its help
  std::vector<CommandOption> options;
  std::vector<CommandOption> places;
  std::vector<CommandNode> commands;
};

// The whole tree, read off the parser's own declarations.
[[nodiscard]] CommandNode CommandTree(const CLI::App& root);

// All commands and groups below `node`, itself first, in the order of the help text.
[[nodiscard]] std::vector<const CommandNode*> AllNodes(const CommandNode& node);

// The page kvdm(1) in roff.
[[nodiscard]] std::string ManualPage(const CommandNode& root);

// The parts of that page that differ from system to system: the entries of FILES for the registry,
// and those of ENVIRONMENT.
struct SystemManual {
  const char* registry;
  const char* environment;
};
[[nodiscard]] SystemManual ThisSystemsManual();

// Scripts that complete commands, groups and options; elsewhere the shells complete files.
[[nodiscard]] std::string BashCompletion(const CommandNode& root);
[[nodiscard]] std::string ZshCompletion(const CommandNode& root);
[[nodiscard]] std::string FishCompletion(const CommandNode& root);

}  // namespace kvdm
