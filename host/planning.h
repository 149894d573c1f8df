// Plans of what commands delete, for the session that they run in.
#pragma once

#include <string>

#include "host/session.h"
#include "safety/deletion_plan.h"

namespace kvdm {

// The documents as they are stored: nothing of them was changed in this session.
[[nodiscard]] DeletionPlan PlanFor(Session& session, DeletionTarget target);

// Failure kUnsafe for a plan that is objected to, unless what lies outside is allowed.
void RequireAllowed(const DeletionPlan& plan, const Session& session);

// The plan as the result of a command.
void ShowPlan(const DeletionPlan& plan, Output& out);

}  // namespace kvdm
