#include "host/arguments.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include <CLI/CLI.hpp>

namespace kvdm {
namespace {

std::string ExamplesText(std::string_view examples) {
  std::string text = "Examples:\n  ";
  for (const char character : examples) {
    text += character;
    if (character == '\n') text += "  ";
  }
  return text + "\n\nEvery command takes the options that 'kvdm --help' lists.";
}

// The word by which people who use shells all day know a command; "" for none.
std::string AliasOf(std::string_view name) {
  if (name == "list") return "ls";
  if (name == "delete") return "rm";
  return name == "rename" ? "mv" : "";
}

void Checked(CLI::Option* option, const std::string& name, ArgumentCheck check) {
  if (check == nullptr) return;
  option->check([name, check](const std::string& text) {
    check(name, text);
    return std::string();
  });
}

}  // namespace

std::string PathOf(const CLI::App& app) {
  const CLI::App* parent = app.get_parent();
  return parent == nullptr ? app.get_name() : PathOf(*parent) + " " + app.get_name();
}

void Arguments::Required(const std::string& name, std::string& value, const std::string& help,
                         ArgumentCheck check) {
  Checked(app_->add_option(name, value, help)->required()->option_text(" "), name, check);
}

void Arguments::Optional(const std::string& name, std::optional<std::string>& value,
                         const std::string& help, ArgumentCheck check) {
  Checked(app_->add_option(name, value, help)->option_text(name.starts_with('-') ? "TEXT" : " "),
          name, check);
}

void Arguments::Flag(const std::string& name, bool& value, const std::string& help) {
  app_->add_flag(name, value, help);
}

void Arguments::List(const std::string& name, std::vector<std::string>& values,
                     const std::string& help) {
  app_->add_option(name, values, help)->option_text("...");
}

const CLI::App& Arguments::Root() const {
  const CLI::App* root = app_;
  while (root->get_parent() != nullptr) root = root->get_parent();
  return *root;
}

bool CommandGroup::IsWanted(const std::string& name) const {
  const auto is_named = [&](const std::string& word) {
    return !word.empty() && std::ranges::find(*named_, word) != named_->end();
  };
  return app_ != nullptr && (named_ == nullptr || is_named(name) || is_named(AliasOf(name)));
}

CommandGroup CommandGroup::Group(const std::string& name, const std::string& help) const {
  CommandGroup group(*this);
  group.app_ = nullptr;
  if (!IsWanted(name)) return group;
  CLI::App* app = app_->add_subcommand(name, help)->fallthrough()->require_subcommand(1);
  app->footer(fmt::format("'{} COMMAND --help' tells more about a command.", PathOf(*app)));
  group.app_ = app;
  return group;
}

CLI::App& CommandGroup::NewApp(const std::string& name, const std::string& help,
                               std::string_view examples) const {
  CLI::App* app = app_->add_subcommand(name, help)->fallthrough();
  app->footer(ExamplesText(examples));
  if (const std::string alias = AliasOf(name); !alias.empty()) app->alias(alias);
  return *app;
}

void CommandGroup::Bind(CLI::App& app, std::shared_ptr<Command> command) const {
  app.callback([chosen = chosen_, &app, command = std::move(command)] {
    *chosen = {PathOf(app), command};
  });
}

}  // namespace kvdm
