#include "tests/error_policy/policy_table.h"
#include "util/messages.h"

namespace kvdm {

// An operation of the data manager traps everything and shows its text.
std::vector<PolicyRow> DataManagerRows() {
  namespace m = messages;
  using enum Policy;
  const auto without_metadata = [](auto accessor) {
    return [accessor](PolicyWorld& w) {
      w.LoseMetadata();
      return ResultText((w.manager.get()->*accessor)());
    };
  };
  return {
      {"IKVDataManager.WorkingDirectory", kNever, {}, "''", RESULT(w.manager->WorkingDirectory())},
      {"IKVDataManager.SetWorkingDirectory",
       kShown,
       {m::kWorkingDirectoryStructure, m::kInvalidWorkingDirectorySelected},
       "-",
       DONE(w.manager->SetWorkingDirectory("D:\\a|b"))},
      {"IKVDataManager.SetWorkingDirectory",
       kShown,
       {m::kInvalidWorkingDirectory, m::kPresetDirectory},
       "-",
       DONE(w.SetDirectoryOnBrokenDisk())},
      {"IKVDataManager.GetDatasetManager",
       kNever,
       {},
       "Nothing",
       RESULT(w.manager->GetDatasetManager())},
      {"IKVDataManager.Flush",
       kShown,
       {std::string(m::kSaving) + " 70Permission denied", m::kPresetDirectory},
       "False",
       RESULT(w.FlushIntoBrokenRegistry())},
      {"IKVDataManager.TmpFilePath",
       kShown,
       {m::kTempFile},
       "''",
       RESULT(w.manager->TmpFilePath())},
      {"IKVDataManager.CleanTemp", kQuiet, {}, "-", DONE(w.manager->CleanTemp())},
      {"IKVDataManager.AnalysisCollection",
       kShown,
       {m::kAnalysisCollection},
       "Nothing",
       without_metadata(&KVDataManager::AnalysisCollection)},
      {"IKVDataManager.DataCollection",
       kShown,
       {m::kDataCollection},
       "Nothing",
       without_metadata(&KVDataManager::DataCollection)},
      {"IKVDataManager.CustLayerCollection",
       kShown,
       {m::kCustLayerCollection},
       "Nothing",
       without_metadata(&KVDataManager::CustLayerCollection)},
      {"IKVDataManager.StoreLayerCollection",
       kShown,
       {m::kStoreLayerCollection},
       "Nothing",
       without_metadata(&KVDataManager::StoreLayerCollection)},
      {"IKVDataManager.StudyAreaCollection",
       kNever,
       {},
       "Nothing",
       RESULT(w.manager->StudyAreaCollection())},
      {"IKVDataManager.TablesManager", kNever, {}, "Nothing", RESULT(w.manager->TablesManager())},
      {"IKVDataManager.PDataList", kNever, {}, "Nothing", RESULT(w.manager->PDataList())},
      {"IKVDataManager.GetPDataFile",
       kShown,
       {m::kPresetFile},
       "''",
       RESULT(w.manager->GetPDataFile("a\"b"))},
      {"IKVDMInitialize.DMInitialize",
       kShown,
       {m::kWorkingDirectorySettings},
       "-",
       DONE(w.manager->DMInitialize(w.host))},
      {"IKVCatalogue.Reload", kShown, {m::kReload}, "False", RESULT(w.manager->Reload())},
      {"IKVCatalogue.ChangedByOthers", kQuiet, {}, "False", RESULT(w.manager->ChangedByOthers())},
      {"IKVCatalogue.Notify", kNever, {}, "-", DONE(w.manager->Notify(nullptr))},
      {"IPersistVariant.ID", kQuiet, {}, "Nothing", RESULT(w.manager->ID())},
      {"IPersistVariant.Load", kQuiet, {}, "-", DONE(w.manager->Load(w.stream))},
      {"IPersistVariant.Save", kQuiet, {}, "-", DONE(w.manager->Save(w.stream))},
  };
}

}  // namespace kvdm
