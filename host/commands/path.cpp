// kvdm path: paths in the component's own form.
#include <fmt/format.h>

#include <kvdm/datamanager/component.h>
#include <kvdm/datamanager/study_areas.h>

#include "host/commands/groups.h"

namespace kvdm {
namespace {

class PathSplit : public Command {
 public:
  explicit PathSplit(Arguments arguments) {
    arguments.Required("PATH", path_, "A path; \"\\\" separates its parts, \".\" its extension");
  }

  void Execute(const Invocation& invocation) override {
    const auto info = Query<IKVFileInfo>(CreateObject("KVDM.KVFileInfo", Platform()));
    Required(info).SetFullPath(path_);
    invocation.out.Fields({{"path", info->FullPath()},
                           {"folder", info->ParentDirPath()},
                           {"name", info->FileName()},
                           {"extension", info->FileNameExtension()}});
  }

 private:
  std::string path_;
};

}  // namespace

void AddPathCommands(const CommandGroup& root) {
  const CommandGroup path = root.Group("path", "Paths as the projects hold them");
  path.Add<PathSplit>("split", "Show the folder, name and extension of a path; no file is touched",
                      "kvdm path split 'D:\\Maps\\Streets.shp'");
}

}  // namespace kvdm
