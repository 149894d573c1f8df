#include "studyarea/kv_tables_manager.h"

#include "collections/collection_view.h"
#include "util/guard.h"
#include "util/kvdm_utils.h"
#include "util/messages.h"
#include "util/names.h"

namespace kvdm {
namespace {

constexpr char kTableBaseName[] = "Table";

}  // namespace

std::string KVTablesManager::TablesDir() {
  return guard::Passed([&] {
    return data_manager_ ? CurrentFolder(*data_manager_) + sDefaultDirNames::kTables
                         : std::string();
  });
}

// The folder is looked up afresh at each step.
std::string KVTablesManager::FreeTablePath() {
  return guard::Reported(Reporter{ReportStyle::kByName, data_manager_.get()},
                         messages::kFreeTablePath, [&] {
                           auto& files = *Required(data_manager_).Services().files;
                           CreateFolderPath(files, TablesDir());
                           const auto name = UniqueFileName(files, TablesDir(), kTableBaseName);
                           return CollapseBackslashes(TablesDir() + "\\" + name);
                         });
}

}  // namespace kvdm
