#include "host/command_tree.h"

#include <CLI/CLI.hpp>

#include "host/arguments.h"

namespace kvdm {
namespace {

CommandOption OptionOf(const CLI::Option& option) {
  CommandOption result;
  for (const auto& name : option.get_snames()) result.names.push_back("-" + name);
  for (const auto& name : option.get_lnames()) result.names.push_back("--" + name);
  if (option.get_positional()) result.names.push_back(option.get_name(true));
  const bool takes_value = option.nonpositional() && option.get_type_size_max() > 0;
  if (takes_value) result.value = option.get_option_text();
  result.help = option.get_description();
  result.required = option.get_required();
  return result;
}

void AddOptions(const CLI::App& app, CommandNode& node) {
  for (const CLI::Option* option : app.get_options()) {
    (option->get_positional() ? node.places : node.options).push_back(OptionOf(*option));
  }
}

void AddNodes(const CommandNode& node, std::vector<const CommandNode*>& nodes) {
  nodes.push_back(&node);
  for (const CommandNode& command : node.commands) AddNodes(command, nodes);
}

}  // namespace

CommandNode CommandTree(const CLI::App& root) {
  CommandNode node;
  node.name = root.get_name();
  node.path = PathOf(root);
  node.help = root.get_description();
  node.footer = root.get_footer();
  AddOptions(root, node);
  for (const CLI::App* command : root.get_subcommands(nullptr)) {
    node.commands.push_back(CommandTree(*command));
  }
  return node;
}

std::vector<const CommandNode*> AllNodes(const CommandNode& node) {
  std::vector<const CommandNode*> nodes;
  AddNodes(node, nodes);
  return nodes;
}

}  // namespace kvdm
