// The kinds of items that several commands look for: what differs between them, side by side.
#pragma once

#include <memory>
#include <string>

#include "host/items.h"

namespace kvdm {

struct StudyAreaKind : CollectionKind<StudyAreaKind, IKVStudyArea> {
  static constexpr char kWord[] = "study area";
  static constexpr char kPlural[] = "study areas";
  static constexpr char kCommand[] = "area";
  static constexpr auto kCollection = &IKVDataManager::StudyAreaCollection;
  static constexpr auto kNames = &IKVStudyAreaCollection::StudyAreasList;
  static constexpr auto kGuids = &IKVStudyAreaCollection::StudyAreasGUIDsList;
  static constexpr auto kGet = &IKVStudyAreaCollection::GetStudyArea;
  static constexpr auto kGetByGuid = &IKVStudyAreaCollection::GetStudyAreaByGUID;

  static void RequireReadable(Session& session) { session.Component().RequireRegistry(); }
  // Failure kUnreadable when the list of study areas can't be used as it is stored.
  static void RequireList(Session& session) {
    const std::string problem = session.Component().CatalogueProblem();
    if (!problem.empty()) throw Failure(ExitCode::kUnreadable, problem);
  }

  static Record Columns(const Ref& area) { return {{"folder", area->StudyAreaDir()}}; }
};

struct AnalysisKind : CollectionKind<AnalysisKind, IKVAnalysis> {
  static constexpr char kWord[] = "analysis";
  static constexpr char kPlural[] = "analyses";
  static constexpr char kCommand[] = "analysis";
  static constexpr auto kCollection = &IKVDataManager::AnalysisCollection;
  static constexpr auto kNames = &IKVAnalysisCollection::AnalysesList;
  static constexpr auto kGuids = &IKVAnalysisCollection::AnalysesGUIDsList;
  static constexpr auto kGet = &IKVAnalysisCollection::GetAnalysis;
  static constexpr auto kGetByGuid = &IKVAnalysisCollection::GetAnalysisByGUID;

  static void RequireReadable(Session& session) {
    session.Component().RequireRegistryForStudyArea();
  }

  static std::string GuidOf(const Ref& analysis) { return analysis->AnalysisGUID(); }
  static Record Columns(const Ref& analysis) {
    return {{"created", analysis->CreationTime()}, {"folder", analysis->AnalysisDir()}};
  }
};

// A sentence about the study area that the project works in, if that is not in the list: what is
// made would go to the working directory without a word. "" when all is well.
[[nodiscard]] std::string MissingCurrentArea(Session& session);
// Tells people so.
void TellOfMissingArea(Session& session);
// Failure kNotFound with that sentence.
void RequireCurrentArea(Session& session);

}  // namespace kvdm
