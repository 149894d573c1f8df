// What becomes of a failure, for every public operation: one row each.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/error_policy/policy_world.h"

namespace kvdm {

enum class Policy {
  kShown,   // the message is shown, the neutral result comes back
  kByName,  // run-time error 438, the message attached to it
  kQuiet,   // the neutral result comes back
  kErrors,  // the error itself arrives
  kNever,   // nothing in it can fail
};

struct PolicyRow {
  // Interface and operation, as the public headers have them.
  const char* operation;
  Policy policy;
  // The texts with which it reports; each must be seen.
  std::vector<std::string> messages;
  std::string neutral;
  // Calls the operation, on purpose with something that makes it fail where no platform call can.
  // Returns the result's text.
  std::function<std::string(PolicyWorld&)> act;
};

std::vector<PolicyRow> DataManagerRows();
std::vector<PolicyRow> StudyAreaRows();
std::vector<PolicyRow> CollectionRows();
std::vector<PolicyRow> LayerCollectionRows();
std::vector<PolicyRow> AnalysisRows();
std::vector<PolicyRow> LayerRows();

}  // namespace kvdm

// The body of a row: an operation with a result, and one without.
#define RESULT(expression) [](PolicyWorld& w) { return ResultText(expression); }
#define DONE(expression)     \
  [](PolicyWorld& w) {       \
    expression;              \
    return std::string("-"); \
  }
