#include "host/planning.h"

#include <fmt/format.h>

#include <utility>

#include "host/documents.h"
#include "host/ownership.h"
#include "util/registry_strings.h"

namespace kvdm {

DeletionPlan PlanFor(Session& session, DeletionTarget target) {
  const Platform& platform = session.Component().GetServices().platform;
  Documents documents = DocumentsOf(session.GetProject());
  documents[kCatalogueDocument] = ToText(ReadRegistryString(
      *platform.registry, RegistryRoot::kLocalMachine, kRegistryKey, kStudyAreaCollectionValue));
  return PlanDeletion(*platform.xml_parser, documents, DirectoryOf(session), std::move(target));
}

void RequireAllowed(const DeletionPlan& plan, const Session& session) {
  if (plan.objection.empty() || session.GetAllowed().outside) return;
  throw Failure(
      ExitCode::kUnsafe,
      fmt::format("{} Nothing was deleted. Add --outside to delete the {} and that folder "
                  "all the same.",
                  plan.objection, plan.target.kind));
}

void ShowPlan(const DeletionPlan& plan, Output& out) {
  Record fields = {{"dry_run", true}};
  for (auto& field : CountsOf(plan)) fields.push_back(std::move(field));
  out.Fields(std::move(fields));
  out.Section("items", RowsOf(plan));
}

}  // namespace kvdm
