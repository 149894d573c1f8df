// kvdm generate, kvdm version: what the program says of itself.
#include <fmt/format.h>

#include "host/commands/groups.h"
#include "host/manual.h"
#include "host/project.h"

namespace kvdm {
namespace {

template <auto Make>
class Generate : public Command {
 public:
  explicit Generate(Arguments arguments) : root_(&arguments.Root()) {}

  void Execute(const Invocation& invocation) override {
    const std::string text = Make(CommandTree(*root_));
    invocation.out.Text({{"text", text}}, text);
  }

 private:
  const CLI::App* root_;
};

class Version : public Command {
 public:
  void Execute(const Invocation& invocation) override {
    invocation.out.Done({{"version", KVDM_VERSION}, {"project_version", kProjectVersion}},
                        fmt::format("kvdm {}", KVDM_VERSION));
  }
};

}  // namespace

void AddGenerateCommands(const CommandGroup& root) {
  const CommandGroup generate =
      root.Group("generate", "The manual page and the completions for shells");
  generate.Add<Generate<&ManualPage>>("man", "Print the manual page", "kvdm generate man");
  generate.Add<Generate<&BashCompletion>>("bash", "Print the completion for bash",
                                          "kvdm generate bash");
  generate.Add<Generate<&ZshCompletion>>("zsh", "Print the completion for zsh",
                                         "kvdm generate zsh");
  generate.Add<Generate<&FishCompletion>>("fish", "Print the completion for fish",
                                          "kvdm generate fish");
}

void AddVersionCommand(const CommandGroup& root) {
  root.Add<Version>("version", "Show the version", "kvdm version");
}

}  // namespace kvdm
