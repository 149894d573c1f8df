// The completions for shells.
#include <fmt/format.h>

#include <algorithm>
#include <string_view>

#include "host/manual.h"

namespace kvdm {
namespace {

std::vector<std::string> CommandNames(const CommandNode& node) {
  std::vector<std::string> names;
  for (const CommandNode& command : node.commands) names.push_back(command.name);
  return names;
}

// The options of a command, with those that every command takes.
std::vector<std::string> OptionNames(const CommandNode& root, const CommandNode& node) {
  std::vector<std::string> names;
  for (const CommandNode* from : {&node, &root}) {
    for (const CommandOption& option : from->options) {
      const std::string& name = option.names.back();
      if (std::ranges::find(names, name) == names.end()) names.push_back(name);
    }
  }
  return names;
}

// The options of all commands after which a value stands.
std::vector<std::string> ValueOptions(const CommandNode& root) {
  std::vector<std::string> names;
  for (const CommandNode* node : AllNodes(root)) {
    for (const CommandOption& option : node->options) {
      for (const std::string& name : option.names) {
        const bool known = std::ranges::find(names, name) != names.end();
        if (!option.value.empty() && !known) names.push_back(name);
      }
    }
  }
  return names;
}

// The paths of all commands and groups, as the alternatives of a shell's pattern.
std::string PathPatterns(const CommandNode& root) {
  std::vector<std::string> patterns;
  for (const CommandNode* node : AllNodes(root)) {
    if (node != &root) patterns.push_back(fmt::format("'{}'", node->path));
  }
  return fmt::format("{}", fmt::join(patterns, "|"));
}

// `text` as one word for a shell.
std::string Quoted(std::string_view text) {
  std::string quoted = "'";
  for (const char character : text) {
    if (character == '\'') {
      quoted += "'\\''";
    } else {
      quoted += character;
    }
  }
  return quoted + "'";
}

// The clauses of a shell's `case "$path_so_far" in`, one a command.
std::string Clauses(const CommandNode& root) {
  std::string clauses;
  for (const CommandNode* node : AllNodes(root)) {
    clauses +=
        fmt::format("    '{}') names='{}' options='{}' ;;\n", node->path,
                    fmt::join(CommandNames(*node), " "), fmt::join(OptionNames(root, *node), " "));
  }
  return clauses;
}

std::string FishPaths(const CommandNode& root) {
  std::string paths;
  for (const CommandNode* node : AllNodes(root)) paths += " " + Quoted(node->path);
  return paths;
}

// The lines for what may come after the words of a command; every command takes the root's options.
std::string FishLines(const CommandNode& node, bool is_root) {
  const std::string condition = Quoted(fmt::format("__kvdm_path_is '{}'", node.path));
  std::string lines;
  for (const CommandNode& command : node.commands) {
    lines += fmt::format("complete -c kvdm -n {} -f -a {} -d {}\n", condition, command.name,
                         Quoted(command.help));
  }
  for (const CommandOption& option : node.options) {
    lines += is_root ? "complete -c kvdm" : fmt::format("complete -c kvdm -n {}", condition);
    for (const std::string& name : option.names) {
      const bool is_long = name.starts_with("--");
      lines += fmt::format(" -{} {}", is_long ? "l" : "s", name.substr(is_long ? 2 : 1));
    }
    lines += fmt::format("{} -d {}\n", option.value.empty() ? "" : " -r", Quoted(option.help));
  }
  return lines;
}

// Common part of the scripts for bash and zsh: finds the command whose words stand before the word
// number `last`, counted from `first`, and what may come after them.
std::string FindCandidates(const CommandNode& root, std::string_view words, std::string_view first,
                           std::string_view last) {
  return fmt::format(R"(  local path_so_far=kvdm names= options= i
  for ((i = {first}; i < {last}; i++)); do
    case "${{{words}[i]}}" in
      {value_options}) ((i++)); continue ;;
    esac
    case "$path_so_far ${{{words}[i]}}" in
      {paths}) path_so_far="$path_so_far ${{{words}[i]}}" ;;
    esac
  done
  case "$path_so_far" in
{clauses}  esac
)",
                     fmt::arg("words", words), fmt::arg("first", first), fmt::arg("last", last),
                     fmt::arg("value_options", fmt::join(ValueOptions(root), "|")),
                     fmt::arg("paths", PathPatterns(root)), fmt::arg("clauses", Clauses(root)));
}

}  // namespace

std::string BashCompletion(const CommandNode& root) {
  return fmt::format(R"(# Completion of kvdm for bash.
_kvdm() {{
{}  COMPREPLY=()
  ((i == COMP_CWORD)) || return
  local word=${{COMP_WORDS[COMP_CWORD]}}
  [[ $word == -* ]] && names=$options
  COMPREPLY=($(compgen -W "$names" -- "$word"))
}}
complete -o default -F _kvdm kvdm
)",
                     FindCandidates(root, "COMP_WORDS", "1", "COMP_CWORD"));
}

std::string ZshCompletion(const CommandNode& root) {
  return fmt::format(R"(#compdef kvdm
# Completion of kvdm for zsh.
_kvdm() {{
{}  if ((i > CURRENT)) || [[ -z $names && $words[CURRENT] != -* ]]; then
    _files
  elif [[ $words[CURRENT] == -* ]]; then
    compadd -- ${{=options}}
  else
    compadd -- ${{=names}}
  fi
}}
_kvdm "$@"
)",
                     FindCandidates(root, "words", "2", "CURRENT"));
}

std::string FishCompletion(const CommandNode& root) {
  std::string script = fmt::format(R"(# Completion of kvdm for fish.
function __kvdm_path_is
  set -l path kvdm
  set -l skip 0
  for word in (commandline -opc)[2..-1]
    if test $skip = 1
      set skip 0
    else if contains -- $word {}
      set skip 1
    else if contains -- "$path $word" {}
      set path "$path $word"
    end
  end
  test "$path" = "$argv[1]"
end
)",
                                   fmt::join(ValueOptions(root), " "), FishPaths(root));
  for (const CommandNode* node : AllNodes(root)) script += FishLines(*node, node == &root);
  return script;
}

}  // namespace kvdm
