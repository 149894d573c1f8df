// kvdm temp: the temporary folder of the working directory, which each start of the component
// empties.
#include <fmt/format.h>

#include "host/commands/groups.h"
#include "util/names.h"

namespace kvdm {
namespace {

class TempPath : public ReadingCommand {
  void Run(Session& session, Output& out) override {
    session.Component().RequireWorkingDirectory();
    const std::string path = session.Manager().TmpFilePath();
    out.Text({{"path", path}}, path);
  }
};

class TempClean : public ReadingCommand {
  void Run(Session& session, Output& out) override {
    session.Component().RequireWorkingDirectory();
    session.Manager().CleanTemp();
    const std::string folder =
        session.Manager().WorkingDirectory() + sDefaultDirNames::kKelvaroTemp;
    FileSystem& files = *session.Component().GetServices().platform.files;
    const auto left =
        files.FolderExists(folder) ? files.OpenFolder(files.FullPath(folder))->Entries().size() : 0;
    out.Done({{"folder", folder}, {"left", static_cast<std::int64_t>(left)}},
             left == 0
                 ? fmt::format("Emptied {}.", folder)
                 : fmt::format("Emptied {}, but for {} that can't be deleted.", folder, left));
  }
};

}  // namespace

void AddTempCommands(const CommandGroup& root) {
  const CommandGroup temp =
      root.Group("temp", "The temporary folder; each kvdm command on the project empties it");
  temp.Add<TempPath>("path", "Show a free path there, without extension", "kvdm temp path");
  temp.Add<TempClean>("clean", "Empty it", "kvdm temp clean");
}

}  // namespace kvdm
