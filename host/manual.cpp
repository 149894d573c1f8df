#include "host/manual.h"

#include <fmt/format.h>

#include <sstream>
#include <string_view>

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

// The parts of the page that are about the program as a whole.
constexpr char kStatusAndFiles[] = R"(.SH EXIT STATUS
.TP
.B 0
The command did its work.
.TP
.B 1
The component, or the system around it, said no.
.TP
.B 2
The command line can't be understood.
.TP
.B 3
There is no such project, item or file.
.TP
.B 4
The name exists, or means several items.
.TP
.B 5
Refused as it may do harm; what allows it is named.
.TP
.B 6
A check found something.
.TP
.B 7
Another program has it locked, or has changed it since it was read.
.TP
.B 8
An operation of the component ended in a run\-time error.
.TP
.B 9
An input file can't be read or understood.
.SH FILES
.TP
.I NAME.kvdm
A project.
Without
.B \-p
it is looked for in the current folder and in those above.
.TP
.I NAME.kvdm.bak
The project before its last change.
)";

constexpr char kNoColor[] = R"(.TP
.B KVDM_PROJECT
The project file, or its folder, where
.B \-p
names none.
.TP
.B NO_COLOR
When it is not empty, headings of tables are not bold.
)";

constexpr char kSeeAlso[] = R"(.SH SEE ALSO
\fBkvdm\-check\fR(1), \fBkvdm\-project\fR(5), \fBkvdm\-metadata\fR(5)
)";

// `text` as roff prints it unchanged, on the line it starts.
std::string Roff(std::string_view text) {
  std::string result;
  for (const char character : text) {
    const bool starts_line = result.empty() || result.back() == '\n';
    if (starts_line && (character == '.' || character == '\'')) result += "\\&";
    if (character == '\\') {
      result += "\\e";
    } else if (character == '-') {
      result += "\\-";
    } else if (character == '\'') {
      result += "\\(aq";
    } else if (character == '~') {
      result += "\\(ti";
    } else {
      result += character;
    }
  }
  return result;
}

std::string OptionEntry(const CommandOption& option) {
  std::string names;
  for (const std::string& name : option.names) {
    names += (names.empty() ? "" : ", ") + fmt::format("\\fB{}\\fR", Roff(name));
  }
  if (!option.value.empty()) names += fmt::format(" \\fI{}\\fR", Roff(option.value));
  return fmt::format(".TP\n{}\n{}\n", names, Roff(option.help));
}

std::string PlaceEntry(const CommandOption& place) {
  return fmt::format(".TP\n\\fI{}\\fR\n{}\n", Roff(place.names.front()), Roff(place.help));
}

std::string Synopsis(const CommandNode& node) {
  std::string line = fmt::format("\\fB{}\\fR", Roff(node.path));
  for (const CommandOption& place : node.places) {
    const std::string name = fmt::format("\\fI{}\\fR", Roff(place.names.front()));
    line += place.required ? " " + name : " [" + name + "]";
  }
  return line;
}

// The indented lines of the examples in a footer.
std::string Examples(const CommandNode& node) {
  std::string lines;
  std::istringstream footer(node.footer);
  for (std::string line; std::getline(footer, line);) {
    if (line.starts_with("  ")) lines += Roff(line.substr(2)) + "\n";
  }
  return lines.empty() ? "" : ".PP\n.EX\n" + lines + ".EE\n";
}

bool IsHelp(const CommandOption& option) { return option.names.back() == "--help"; }

std::string CommandSection(const CommandNode& node) {
  std::string section = fmt::format(".SS {}\n{}.\n", Synopsis(node), Roff(node.help));
  for (const CommandOption& place : node.places) section += PlaceEntry(place);
  for (const CommandOption& option : node.options) {
    if (!IsHelp(option)) section += OptionEntry(option);
  }
  return section + Examples(node);
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

std::string ManualPage(const CommandNode& root) {
  std::string page =
      ".TH KVDM 1\n.SH NAME\nkvdm \\- study areas, analyses and layers of "
      "market\\-analysis projects\n.SH SYNOPSIS\n";
  page += "\\fBkvdm\\fR [\\fIOPTIONS\\fR] \\fICOMMAND\\fR [\\fIARGUMENTS\\fR]\n.SH DESCRIPTION\n";
  page += Roff(root.help) + "\n";
  page += "Results go to standard output, everything else to standard error.\n.SH OPTIONS\n";
  for (const CommandOption& option : root.options) page += OptionEntry(option);
  page += ".SH COMMANDS\n";
  for (const CommandNode* node : AllNodes(root)) {
    if (node != &root && node->commands.empty()) page += CommandSection(*node);
  }
  const SystemManual system = ThisSystemsManual();
  page += kStatusAndFiles;
  page += fmt::format("{}.SH ENVIRONMENT\n{}{}", system.registry, system.environment, kNoColor);
  page += ".SH EXAMPLES\n" + Examples(root);
  return page + kSeeAlso;
}

}  // namespace kvdm
