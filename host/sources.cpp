#include "host/sources.h"

namespace kvdm {
namespace {

template <class Collection>
std::shared_ptr<Collection> Reached(std::shared_ptr<Collection> collection, const char* kind) {
  if (collection) return collection;
  throw Failure(ExitCode::kRefused,
                fmt::format("The {} list can't be reached. 'kvdm status' tells more.", kind));
}

// Failure kUnreadable when the list of study areas can't be used as it is stored.
void RequireCatalogue(Session& session) {
  const std::string problem = session.Component().CatalogueProblem();
  if (!problem.empty()) throw Failure(ExitCode::kUnreadable, problem);
}

}  // namespace

std::shared_ptr<IKVStudyAreaCollection> StudyAreaCollection(Session& session) {
  session.Component().RequireRegistry();
  return Reached(session.Manager().StudyAreaCollection(), "study area");
}

std::shared_ptr<IKVAnalysisCollection> AnalysisCollection(Session& session) {
  session.Component().RequireRegistryForStudyArea();
  return Reached(session.Manager().AnalysisCollection(), "analysis");
}

std::string MissingCurrentArea(Session& session) {
  const std::string name = session.Component().CurrentStudyArea();
  if (name.empty() || StudyAreaCollection(session)->GetStudyArea(name)) return {};
  RequireCatalogue(session);
  return fmt::format(
      "The project works in the study area {}, which is not in the list of study "
      "areas: it was deleted or renamed. Open another one with 'kvdm area use NAME', "
      "or none with 'kvdm area use --none'.",
      name);
}

void TellOfMissingArea(Session& session) {
  const std::string missing = MissingCurrentArea(session);
  if (!missing.empty()) Output::Tell("kvdm: " + missing);
}

void RequireCurrentArea(Session& session) {
  const std::string missing = MissingCurrentArea(session);
  if (!missing.empty()) throw Failure(ExitCode::kNotFound, missing);
}

ItemSource<IKVStudyArea> StudyAreas(Session& session) {
  const auto collection = StudyAreaCollection(session);
  auto names = collection->StudyAreasList();
  if (!names) RequireCatalogue(session);
  return {
      .kind = "study area",
      .command = "kvdm area list",
      .names = std::move(names),
      .guids = collection->StudyAreasGUIDsList(),
      .by_name = [collection](const std::string& name) { return collection->GetStudyArea(name); },
      .by_guid =
          [collection](const std::string& guid) { return collection->GetStudyAreaByGUID(guid); },
      .guid_of = [](IKVStudyArea& area) { return area.GUID(); },
      .describe = [](IKVStudyArea& area) -> Record {
        return {{"name", area.Name()}, {"guid", area.GUID()}, {"folder", area.StudyAreaDir()}};
      },
  };
}

ItemSource<IKVAnalysis> Analyses(Session& session) {
  const auto collection = AnalysisCollection(session);
  return {
      .kind = "analysis",
      .command = "kvdm analysis list",
      .names = collection->AnalysesList(),
      .guids = collection->AnalysesGUIDsList(),
      .by_name = [collection](const std::string& name) { return collection->GetAnalysis(name); },
      .by_guid =
          [collection](const std::string& guid) { return collection->GetAnalysisByGUID(guid); },
      .guid_of = [](IKVAnalysis& analysis) { return analysis.AnalysisGUID(); },
      .describe = [](IKVAnalysis& analysis) -> Record {
        return {{"name", analysis.Name()},
                {"guid", analysis.AnalysisGUID()},
                {"created", analysis.CreationTime()},
                {"folder", analysis.AnalysisDir()}};
      },
  };
}

}  // namespace kvdm
