// kvdm table: where the tables of the current study area are.
#include <fmt/format.h>

#include "host/commands/groups.h"
#include "host/commands/item_commands.h"
#include "host/ownership.h"

namespace kvdm {
namespace {

std::shared_ptr<IKVTablesManager> TablesManager(Session& session) {
  session.Component().RequireWorkingDirectory();
  session.Component().RequireRegistryForStudyArea();
  RequireCurrentArea(session);
  if (auto tables = session.Manager().TablesManager()) return tables;
  throw Failure(ExitCode::kRefused, "The tables can't be reached. 'kvdm status' tells more.");
}

std::string TablesFolder(Session& session) { return TablesManager(session)->TablesDir(); }

class TablePath : public ChangingCommand {
 public:
  explicit TablePath(Arguments arguments) {
    arguments.Flag("--reserve", reserve_, "Make an empty file there, so that nobody else gets it");
  }

 private:
  void Run(Session& session, Output& out) override {
    const std::string path = TablesManager(session)->FreeTablePath();
    if (reserve_) session.Component().GetServices().platform.files->WriteFile(path, "");
    out.Text({{"path", path}}, path);
  }

  bool reserve_ = false;
};

}  // namespace

void AddTableCommands(const CommandGroup& root) {
  const CommandGroup table =
      root.Group("table", "Tables of the study area in use, else of the working directory");
  table.Add<FolderShow<&TablesFolder, ReadingCommand>>("dir", "Show the folder of the tables",
                                                       "kvdm table dir");
  table.Add<TablePath>("path",
                       "Show a free path for a new table, without extension; makes the folder",
                       "kvdm table path\nkvdm table path --reserve");
}

}  // namespace kvdm
