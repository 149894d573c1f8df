// kvdm alias: what people call the two kinds of layers.
#include <fmt/format.h>

#include "datamanager/area_registry.h"
#include "host/commands/groups.h"

namespace kvdm {
namespace {

class AliasShow : public ReadingCommand {
  void Run(Session& session, Output& out) override {
    AreaRegistry& registry = session.Component().RegisteredItems();
    const Record words = {{"customer", registry.CustomerAlias()}, {"store", registry.StoreAlias()}};
    session.Component().RequireRegistry();
    out.Fields(words);
  }
};

class AliasSet : public ChangingCommand {
 public:
  explicit AliasSet(Arguments arguments) {
    arguments.Required("KIND", kind_, "customer or store");
    arguments.Required("WORD", word_, "The new word; an empty one brings back the usual word",
                       RequireStorable);
  }

 private:
  [[nodiscard]] bool ChangesRegistry() const override { return true; }
  void Run(Session& session, Output& out) override {
    session.Component().RequireRegistry();
    AreaRegistry& registry = session.Component().RegisteredItems();
    if (kind_ == "customer") {
      registry.SetCustomerAlias(word_);
    } else if (kind_ == "store") {
      registry.SetStoreAlias(word_);
    } else {
      throw Failure(ExitCode::kUsage, "KIND is customer or store.");
    }
    const std::string word = kind_ == "store" ? registry.StoreAlias() : registry.CustomerAlias();
    session.Component().RequireRegistry();
    const bool refused = session.Component().GetServices().registry->Refused().has_value();
    if (!refused && !word_.empty() && word != word_) {
      throw Failure(ExitCode::kRefused,
                    fmt::format("The registry took over {} in place of {}.", word, word_));
    }
    out.Done({{"kind", kind_}, {"word", word}},
             fmt::format("A {} layer is called {} now.", kind_, word));
  }

  std::string kind_;
  std::string word_;
};

}  // namespace

void AddAliasCommands(const CommandGroup& root) {
  const CommandGroup alias =
      root.Group("alias", "What customer and store layers are called, in all projects");
  alias.Add<AliasShow>("show", "Show the two words", "kvdm alias show");
  alias.Add<AliasSet>("set", "Change one word", "kvdm alias set customer Client");
}

}  // namespace kvdm
