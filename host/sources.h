// The collections of the component as the commands search them.
#pragma once

#include <string>

#include "host/items.h"
#include "host/session.h"

namespace kvdm {

// The collections themselves. Failure kRefused when the component has none, kUnreadable when they
// need a registry that could not be read.
[[nodiscard]] std::shared_ptr<IKVStudyAreaCollection> StudyAreaCollection(Session& session);
[[nodiscard]] std::shared_ptr<IKVAnalysisCollection> AnalysisCollection(Session& session);

// A sentence about the study area that the project works in, if that is not in the list: what is
// made would go to the working directory without a word. "" when all is well.
[[nodiscard]] std::string MissingCurrentArea(Session& session);
// Tells people so.
void TellOfMissingArea(Session& session);
// Failure kNotFound with that sentence.
void RequireCurrentArea(Session& session);

// StudyAreas fails with kUnreadable, too, when the list can't be used as it is stored.
[[nodiscard]] ItemSource<IKVStudyArea> StudyAreas(Session& session);
[[nodiscard]] ItemSource<IKVAnalysis> Analyses(Session& session);

}  // namespace kvdm
