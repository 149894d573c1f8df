// kvdm preset: the data that comes with the installation.
#include <fmt/format.h>

#include "host/commands/groups.h"

namespace kvdm {
namespace {

class PresetList : public ReadingCommand {
  void Run(Session& session, Output& out) override {
    session.Component().RequireRegistry();
    const NameListRef names = session.Manager().PDataList();
    if (!names) throw Failure(ExitCode::kRefused, "The preset data can't be reached.");
    std::vector<Record> items;
    for (const Value& name : *names) {
      const std::string text = ToText(name);
      items.push_back({{"name", text}, {"file", session.Manager().GetPDataFile(text)}});
    }
    out.Items(std::move(items), "There is no preset data.");
  }
};

class PresetPath : public ReadingCommand {
 public:
  explicit PresetPath(Arguments arguments) {
    arguments.Required("NAME", name_, "A preset data item");
  }

 private:
  void Run(Session& session, Output& out) override {
    session.Component().RequireRegistry();
    const std::string path = session.Manager().GetPDataFile(name_);
    if (path.empty()) {
      throw Failure(ExitCode::kNotFound,
                    fmt::format("There is no preset data {}. 'kvdm preset list' shows what there "
                                "is.",
                                name_));
    }
    out.Text({{"name", name_}, {"path", path}}, path);
  }

  std::string name_;
};

}  // namespace

void AddPresetCommands(const CommandGroup& root) {
  const CommandGroup preset = root.Group("preset", "Preset data");
  preset.Add<PresetList>("list", "List the preset data", "kvdm preset list");
  preset.Add<PresetPath>("path", "Show where an item's file is", "kvdm preset path Roads");
}

}  // namespace kvdm
