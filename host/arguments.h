// Argument declarations of commands. Help and parsing both come from the declaration.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "host/checks.h"
#include "host/command.h"

namespace CLI {
class App;
}

namespace kvdm {

// How people call the command: "kvdm area list".
[[nodiscard]] std::string PathOf(const CLI::App& app);

// The arguments of one command. A name such as "NAME" is a positional argument, one such as
// "--area" an option. The members bound must outlive the parsing. What is to be stored has a check,
// which ends the command before it runs.
class Arguments {
 public:
  explicit Arguments(CLI::App& app) : app_(&app) {}

  void Required(const std::string& name, std::string& value, const std::string& help,
                ArgumentCheck check = nullptr);
  void Optional(const std::string& name, std::optional<std::string>& value, const std::string& help,
                ArgumentCheck check = nullptr);
  void Flag(const std::string& name, bool& value, const std::string& help);
  // Any number of texts, none too.
  void List(const std::string& name, std::vector<std::string>& values, const std::string& help);

  // The whole command line, for commands that describe it.
  [[nodiscard]] const CLI::App& Root() const;

 private:
  CLI::App* app_;
};

// A group of commands under one word of the command line.
//
//   CommandGroup area = root.Group("area", "Study areas");
//   area.Add<AreaList>("list", "List the study areas", "kvdm area list --json");
//
// Making all commands takes longer than most of them do: only those are made that the words of a
// command line can mean, unless all are wanted.
class CommandGroup {
 public:
  using Words = std::vector<std::string>;

  // The command that the command line asks for.
  struct Chosen {
    std::string path;  // "kvdm area list"
    std::shared_ptr<Command> command;
  };

  // `named` are the words; nullptr for all commands.
  CommandGroup(CLI::App& app, Chosen& chosen, const Words* named)
      : app_(&app), chosen_(&chosen), named_(named) {}

  [[nodiscard]] CommandGroup Group(const std::string& name, const std::string& help) const;

  // Adds a command; `examples` are whole command lines, one a line.
  template <class SomeCommand>
  void Add(const std::string& name, const std::string& help, std::string_view examples) const {
    if (!IsWanted(name)) return;
    CLI::App& app = NewApp(name, help, examples);
    if constexpr (std::is_constructible_v<SomeCommand, Arguments>) {
      Bind(app, std::make_shared<SomeCommand>(Arguments(app)));
    } else {
      Bind(app, std::make_shared<SomeCommand>());
    }
  }

 private:
  [[nodiscard]] bool IsWanted(const std::string& name) const;
  [[nodiscard]] CLI::App& NewApp(const std::string& name, const std::string& help,
                                 std::string_view examples) const;
  void Bind(CLI::App& app, std::shared_ptr<Command> command) const;

  CLI::App* app_;  // nullptr for a group that is not wanted
  Chosen* chosen_;
  const Words* named_;
};

}  // namespace kvdm
