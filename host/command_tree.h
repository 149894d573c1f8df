// What the command line takes, as plain data: for the manual page and the completions.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kvdm {

struct CommandOption {
  std::vector<std::string> names;  // "-p", "--project"; of a place in the command line, its name
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

}  // namespace kvdm
