// kvdm generate: the manual page and the completions for shells.
#include "host/commands/groups.h"
#include "host/manual.h"

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

}  // namespace kvdm
