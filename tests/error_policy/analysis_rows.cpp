#include "tests/error_policy/policy_table.h"
#include "util/messages.h"

namespace kvdm {

// An analysis reports by name.
std::vector<PolicyRow> AnalysisRows() {
  namespace m = messages;
  using enum Policy;
  return {
      {"IKVAnalysis.Name", kErrors, {}, "''", RESULT(w.nameless_analysis->Name())},
      {"IKVAnalysis.SetName",
       kByName,
       {m::kRenameAnalysis},
       "-",
       DONE(w.whole_analysis->SetName(TooLong()))},
      {"IKVAnalysis.LayerFile", kQuiet, {}, "''", RESULT(w.bare_analysis->LayerFile())},
      {"IKVAnalysis.CreationTime", kQuiet, {}, "''", RESULT(w.bare_analysis->CreationTime())},
      {"IKVAnalysis.AnalysisDir", kQuiet, {}, "''", RESULT(w.bare_analysis->AnalysisDir())},
      {"IKVAnalysis.AnalysisGUID", kQuiet, {}, "''", RESULT(w.bare_analysis->AnalysisGUID())},
      {"IKVAnalysis.Comments", kQuiet, {}, "''", RESULT(w.bare_analysis->Comments())},
      {"IKVAnalysis.SetLayerFile",
       kErrors,
       {},
       "-",
       DONE(w.whole_analysis->SetLayerFile(TooLong()))},
      {"IKVAnalysis.SetComments", kErrors, {}, "-", DONE(w.whole_analysis->SetComments(TooLong()))},
      {"IKVAnalysis.SetCreationTime",
       kQuiet,
       {},
       "-",
       DONE(w.whole_analysis->SetCreationTime(TooLong()))},
      {"IKVAnalysis.SetParameter",
       kByName,
       {m::kSetParameter},
       "False",
       RESULT(w.whole_analysis->SetParameter("a\"b", "1"))},
      {"IKVAnalysis.GetParameter",
       kQuiet,
       {},
       "''",
       RESULT(w.whole_analysis->GetParameter("a\"b"))},
      {"IKVAnalysis.ParametersList",
       kNever,
       {},
       "Nothing",
       RESULT(w.whole_analysis->ParametersList())},
      {"IKVAnalysis.ClearParametersList",
       kNever,
       {},
       "False",
       RESULT(w.whole_analysis->ClearParametersList())},
      {"IKVAnalysis.WriteToPropertySet",
       kQuiet,
       {},
       "False",
       [](PolicyWorld& w) {
         auto set = w.Entries();
         return ResultText(w.whole_analysis->WriteToPropertySet(set));
       }},
      {"IKVAnalysis.ReadFromPropertySet",
       kQuiet,
       {},
       "False",
       RESULT(w.whole_analysis->ReadFromPropertySet(w.Entries()))},
      {"IKVLayerEdit.SetLayerFile",
       kByName,
       {m::kAnalysisLayerFile},
       "-",
       DONE(Query<IKVLayerEdit>(w.whole_analysis)->SetLayerFile(TooLong()))},
      {"IKVLayerEdit.SetGUID",
       kByName,
       {m::kAnalysisGuid},
       "-",
       DONE(Query<IKVLayerEdit>(w.whole_analysis)->SetGUID(TooLong()))},
      {"IKVMetadata.ImportMetadata",
       kQuiet,
       {},
       "-",
       DONE(Query<IKVMetadata>(w.whole_analysis)->ImportMetadata(w.Metadata("Analysis Layer")))},
      {"IKVMetadata.ExportMetadata",
       kQuiet,
       {},
       "-",
       DONE(Query<IKVMetadata>(w.nameless_analysis)->ExportMetadata(w.Metadata("Analysis Layer")))},
  };
}

}  // namespace kvdm
