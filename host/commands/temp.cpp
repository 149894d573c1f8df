// kvdm temp: the temporary folder of the working directory. Other programs may have files there: no
// command but 'kvdm temp clean' deletes any.
#include <fmt/format.h>

#include "host/commands/groups.h"
#include "util/names.h"

namespace kvdm {
namespace {

class TempPath : public ProjectCommand {
 public:
  explicit TempPath(Arguments arguments) {
    arguments.Flag("--reserve", reserve_, "Make an empty file there, so that nobody else gets it");
  }

 private:
  [[nodiscard]] bool Changes() const override { return reserve_; }

  void Run(Session& session, Output& out) override {
    session.Component().RequireWorkingDirectory();
    const std::string path = session.Manager().TmpFilePath();
    if (reserve_) session.Component().GetServices().platform.files->WriteFile(path, "");
    out.Text({{"path", path}}, path);
  }

  bool reserve_ = false;
};

class TempClean : public ChangingCommand {
  void Run(Session& session, Output& out) override {
    session.Component().RequireWorkingDirectory();
    session.Manager().CleanTemp();
    const std::string folder =
        session.Manager().WorkingDirectory() + sDefaultDirNames::kKelvaroTemp + "\\";
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
      root.Group("temp", "The temporary folder, which programs that embed the component empty");
  temp.Add<TempPath>("path", "Show a free path there, without extension",
                     "kvdm temp path\nkvdm temp path --reserve");
  temp.Add<TempClean>("clean", "Empty it", "kvdm temp clean");
}

}  // namespace kvdm
